#include "tests/module/QtUser.h"

#include <QAbstractButton>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QSlider>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>
#include <QTimer>

void QtUser::Watch() {
    if (m_Context == nullptr) m_Context = std::make_unique<QObject>();
    // A new timer each time: a script that runs inside one poll is watched by the next.
    QTimer::singleShot(5, m_Context.get(), [this] { Poll(); });
}

QWidget* QtUser::Window() {
    return QApplication::activeModalWidget();
}

void QtUser::Poll() {
    Watch();
    QWidget* window = Window();
    if (window == nullptr || !window->isVisible() || m_Seen.contains(window)) return;
    m_Seen.insert(window);
    if (auto* box = qobject_cast<QMessageBox*>(window)) {
        AnswerBox(*box);
    } else if (auto* save = qobject_cast<QFileDialog*>(window)) {
        AnswerSaveDialog(*save);
    } else {
        Next<Script>(m_Scripts, [](User&) {})(*this);
        if (Window() == window) window->close();
    }
    m_Seen.erase(window);
}

void QtUser::AnswerBox(QMessageBox& box) {
    m_Boxes.push_back("[" + box.windowTitle().toStdString() + "] " + box.text().toStdString());
    const int answer = Next<int>(m_Answers, IDCANCEL);
    const auto wanted = answer == IDYES  ? QMessageBox::Yes
                        : answer == IDNO ? QMessageBox::No
                                         : QMessageBox::Ok;
    if (QAbstractButton* button = box.button(wanted))
        QTest::mouseClick(button, Qt::LeftButton);
    else
        box.close();
}

void QtUser::AnswerSaveDialog(QFileDialog& dialog) {
    const std::string path = Next<std::string>(m_Saves, "");
    if (path.empty()) return dialog.reject();
    dialog.findChild<QLineEdit*>("fileNameEdit")->setText(QString::fromStdString(path));
    QMetaObject::invokeMethod(&dialog, "accept");
}

QWidget* QtUser::Find(int id) {
    QWidget* window = Window();
    const QString name = QString::number(id);
    if (window != nullptr) {
        for (const char* page : {"107", "108", "106"}) {
            auto* shown = window->findChild<QWidget*>(page);
            if (shown == nullptr || !shown->isVisible()) continue;
            if (auto* control = shown->findChild<QWidget*>(name)) return control;
        }
        if (auto* control = window->findChild<QWidget*>(name)) return control;
    }
    throw std::runtime_error("no control " + std::to_string(id) + " in front");
}

void QtUser::Click(int id) {
    QTest::mouseClick(Find(id), Qt::LeftButton);
}

void QtUser::Type(int id, const char* text) {
    QWidget* edit = Find(id);
    edit->setFocus();
    QTest::keySequence(edit, QKeySequence::SelectAll);
    QTest::keyClick(edit, Qt::Key_Delete);
    const QString typed = QString::fromUtf8(text).remove('\r');
    for (const QChar character : typed)
        if (character == '\n')
            QTest::keyClick(edit, Qt::Key_Return);
        else
            QTest::keyClicks(edit, QString(character));
}

void QtUser::Select(int id, int index) {
    QWidget* combo = Find(id);
    combo->setFocus();
    QTest::keyClick(combo, Qt::Key_Home);
    for (int i = 0; i < index; ++i) QTest::keyClick(combo, Qt::Key_Down);
}

void QtUser::Tab(int index) {
    QTabBar* bar = dynamic_cast<QTabWidget&>(*Find(IDC_TAB_CONTROL)).tabBar();
    QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(index).center());
}

void QtUser::Drag(int id, int position) {
    auto& slider = dynamic_cast<QSlider&>(*Find(id));
    slider.setSliderDown(true);
    slider.setSliderPosition(position);
    Wait(30); // the edit follows the repaint
    slider.setSliderDown(false);
}

void QtUser::Wait(unsigned milliseconds) {
    QTest::qWait(static_cast<int>(milliseconds));
}

std::string QtUser::Text(int id) {
    QWidget* widget = Find(id);
    if (auto* lines = qobject_cast<QPlainTextEdit*>(widget))
        return lines->toPlainText().replace("\n", "\r\n").toStdString();
    return widget->property("text").toString().toStdString();
}

int QtUser::Focus() {
    const QWidget* widget = Window()->focusWidget();
    while (widget != nullptr && widget->objectName().toInt() == 0) widget = widget->parentWidget();
    return widget != nullptr ? widget->objectName().toInt() : 0;
}
