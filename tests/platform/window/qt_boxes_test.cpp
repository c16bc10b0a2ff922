// Boxes that ask: shown ones are answered by pressing their buttons, scripted ones by the script.
#include "platform/window/qt/qt_boxes.h"
#include "tests/platform/window/qt_fixture.h"

#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>

using namespace qt_test;

namespace {

/// Does something with the box that comes up next.
template <class Box, class Work>
void when_shown(Work work) {
    QTimer::singleShot(0, qApp, [work] {
        QWidget* active = QApplication::activePopupWidget() != nullptr
                              ? QApplication::activePopupWidget()
                              : QApplication::activeModalWidget();
        auto* box = qobject_cast<Box*>(active);
        ASSERT_NE(box, nullptr);
        work(*box);
    });
}

TEST_F(QtWindows, MessageBoxesAnswerWithTheNumberOfTheButton) {
    struct Row {
        unsigned type;
        QMessageBox::StandardButton pressed;
        int answer, safe;
    };
    const Row rows[] = {{0, QMessageBox::Ok, 1, 1},
                        {1, QMessageBox::Cancel, 2, 2},
                        {2 | 0x10, QMessageBox::Retry, 4, 3},
                        {2, QMessageBox::Ignore, 5, 3},
                        {3 | 0x20, QMessageBox::No, 7, 2},
                        {4 | 0x30, QMessageBox::Yes, 6, 7},
                        {5 | 0x1000, QMessageBox::Retry, 4, 2}};
    for (const Row& row : rows) {
        const MessageQuestion question{"title", "<b>text", "", row.type, "", {}};
        when_shown<QMessageBox>([&](QMessageBox& box) {
            EXPECT_EQ(box.text(), "<b>text");
            EXPECT_EQ(box.textFormat(), Qt::PlainText);
            box.button(row.pressed)->click();
        });
        EXPECT_EQ(show_message_box(question, nullptr), row.answer);
        EXPECT_EQ(safe_answer(row.type), row.safe);
    }
    bool more = false;
    const MessageQuestion question{"title", "text", "where", 0x10, "More", [&] { more = true; }};
    when_shown<QMessageBox>([&](QMessageBox& box) {
        EXPECT_EQ(box.informativeText(), "where");
        for (QAbstractButton* button : box.buttons()) {
            if (button->text() == "More") {
                button->click();
            }
        }
    });
    EXPECT_EQ(show_message_box(question, nullptr), 1);
    EXPECT_TRUE(more);
}

TEST_F(QtWindows, MenusAnswerWithTheRow) {
    std::vector<MenuRow> rows(4);
    rows[0].text = "First";
    rows[1].text = "-";
    rows[2].text = "Red";
    rows[2].has_color = true;
    rows[2].color = 0xff;
    rows[2].checked = true;
    rows[3].text = "Off";
    rows[3].enabled = false;
    when_shown<QMenu>([](QMenu& menu) {
        ASSERT_EQ(menu.actions().size(), 4);
        EXPECT_TRUE(menu.actions()[1]->isSeparator());
        EXPECT_TRUE(menu.actions()[2]->isChecked());
        const QImage field = menu.actions()[2]->icon().pixmap(16, 16).toImage();
        EXPECT_EQ(QColor(field.pixel(8, 8)), QColor(255, 0, 0));
        EXPECT_FALSE(menu.actions()[3]->isEnabled());
        menu.setActiveAction(menu.actions()[2]);
        QTest::keyClick(&menu, Qt::Key_Return);
    });
    EXPECT_EQ(system.pop_up_menu(rows, {10, 10}, nullptr), 2);
    when_shown<QMenu>([](QMenu& menu) { menu.close(); });
    EXPECT_EQ(system.pop_up_menu(rows, {10, 10}, nullptr), -1);
}

TEST_F(QtWindows, ScriptsAnswerBoxesAheadOrInTheNextLine) {
    const auto window = system.make_window(window_spec("dlg"));
    Control* ask = window->add_control(control_spec(ControlKind::push_button, "ask"));
    std::vector<std::string> answers;
    ask->on_event = [&](const ControlEvent&) {
        answers.push_back(std::to_string(system.message_box({"t", "x", "", 3, "", {}}, nullptr)));
        answers.push_back(system.choose_file({}, window.get()).value_or("none"));
        answers.push_back(
            std::to_string(system.choose_color("c", 0, window.get()).value_or(0x123456)));
        answers.push_back(std::to_string(system.pop_up_menu({{.text = "a"}}, {}, nullptr)));
        return true;
    };
    system.set_script({"answer 6", "ask click", "answer /tmp/a b.png", "answer #ff8000", "answer 0",
                       "ask click", "nobody click"});
    EXPECT_EQ(window->run_modal(), 2);
    system.set_script({});
    EXPECT_THAT(answers, testing::ElementsAre("6", "/tmp/a b.png", "33023", "0", "2", "none",
                                              "1193046", "-1"));
}

TEST_F(QtWindows, TheClipboardHoldsText) {
    system.set_clipboard_text("Größe");
    EXPECT_EQ(system.clipboard_text(), "Größe");
}

} // namespace
