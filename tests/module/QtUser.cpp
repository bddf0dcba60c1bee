#include "tests/module/QtUser.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSlider>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>
#include <QTimer>

#include "toolkit/constants.h"

namespace {

constexpr int kPollPeriod = 5; // milliseconds

} // namespace

QtUser::QtUser() = default;
QtUser::~QtUser() {
    delete m_Context;
}

void QtUser::Watch() {
    if (m_Context == nullptr) m_Context = new QObject;
    // A new timer each time: a script that runs inside one poll is watched by the next.
    QTimer::singleShot(kPollPeriod, m_Context, [this] { Poll(); });
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
    } else if (!m_Scripts.empty()) {
        Script script = std::move(m_Scripts.front());
        m_Scripts.pop_front();
        script(*this);
        if (Window() == window) window->close();
    } else {
        ++m_Surprises;
        window->close();
    }
    m_Seen.erase(window);
}

void QtUser::AnswerBox(QMessageBox& box) {
    m_Boxes.push_back("[" + box.windowTitle().toStdString() + "] " + box.text().toStdString());
    int answer = IDCANCEL;
    if (m_Answers.empty())
        ++m_Surprises;
    else {
        answer = m_Answers.front();
        m_Answers.pop_front();
    }
    QMessageBox::StandardButton wanted = QMessageBox::Ok;
    if (answer == IDYES) wanted = QMessageBox::Yes;
    if (answer == IDNO) wanted = QMessageBox::No;
    if (QAbstractButton* button = box.button(wanted))
        QTest::mouseClick(button, Qt::LeftButton);
    else
        box.close();
}

void QtUser::AnswerSaveDialog(QFileDialog& dialog) {
    std::string path;
    if (m_Saves.empty())
        ++m_Surprises;
    else {
        path = m_Saves.front();
        m_Saves.pop_front();
    }
    if (path.empty()) return dialog.reject();
    auto* name = dialog.findChild<QLineEdit*>("fileNameEdit");
    ASSERT_NE(name, nullptr);
    name->setText(QString::fromStdString(path));
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
    if (auto* line = qobject_cast<QLineEdit*>(edit)) line->selectAll();
    if (auto* lines = qobject_cast<QPlainTextEdit*>(edit)) lines->selectAll();
    QTest::keyClick(edit, Qt::Key_Delete);
    for (const QChar character : QString::fromUtf8(text)) {
        if (character == '\r') continue;
        if (character == '\n')
            QTest::keyClick(edit, Qt::Key_Return);
        else
            QTest::keyClicks(edit, QString(character));
    }
}

void QtUser::Select(int id, int index) {
    auto* combo = qobject_cast<QComboBox*>(Find(id));
    ASSERT_NE(combo, nullptr);
    combo->setFocus();
    QTest::keyClick(combo, Qt::Key_Home);
    for (int i = 0; i < index; ++i) QTest::keyClick(combo, Qt::Key_Down);
}

void QtUser::Tab(int index) {
    auto* tabs = qobject_cast<QTabWidget*>(Find(IDC_TAB_CONTROL));
    ASSERT_NE(tabs, nullptr);
    QTest::mouseClick(tabs->tabBar(), Qt::LeftButton, {}, tabs->tabBar()->tabRect(index).center());
}

void QtUser::Drag(int id, int position) {
    auto* slider = qobject_cast<QSlider*>(Find(id));
    ASSERT_NE(slider, nullptr);
    slider->setSliderDown(true);
    slider->setSliderPosition(position);
    Wait(30); // the edit follows the repaint
    slider->setSliderDown(false);
}

void QtUser::CloseFrame() {
    Window()->close();
}

void QtUser::Wait(unsigned milliseconds) {
    QTest::qWait(static_cast<int>(milliseconds));
}

std::string QtUser::Text(int id) {
    QWidget* widget = Find(id);
    if (auto* line = qobject_cast<QLineEdit*>(widget)) return line->text().toStdString();
    if (auto* lines = qobject_cast<QPlainTextEdit*>(widget))
        return lines->toPlainText().replace("\n", "\r\n").toStdString();
    return widget->property("text").toString().toStdString();
}

bool QtUser::Enabled(int id) {
    return Find(id)->isEnabled();
}
bool QtUser::Visible(int id) {
    return Find(id)->isVisible();
}

bool QtUser::Checked(int id) {
    auto* button = qobject_cast<QAbstractButton*>(Find(id));
    return button != nullptr && button->isChecked();
}

int QtUser::Selection(int id) {
    auto* combo = qobject_cast<QComboBox*>(Find(id));
    return combo != nullptr ? combo->currentIndex() : -2;
}

int QtUser::TabInFront() {
    return qobject_cast<QTabWidget*>(Find(IDC_TAB_CONTROL))->currentIndex();
}
