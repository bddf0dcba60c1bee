#include "pages/jTPIUPage.h"

jTPIUPage::jTPIUPage() : CPropertyPage(1003) {}

void jTPIUPage::DoDataExchange(CDataExchange&) {}
