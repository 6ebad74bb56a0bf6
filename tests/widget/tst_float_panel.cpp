#include "support/TestTable.h"
#include "widget/FloatPanel.h"
#include "widget/LabelWidthFloatPanel.h"

#include <QAccessible>
#include <QApplication>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>
#include <QtTest>

class FloatPanelTest;
using Action = std::function<void(FloatPanelTest *)>;
Q_DECLARE_METATYPE(Action)

class FloatPanelTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { m_window.reset(); }
    void opensAndCloses_data();
    void opensAndCloses();
    void disabledPanelStaysClosed();
    void staysOnScreen_data();
    void staysOnScreen();
    void newPanelReplacesOldOne();

private:
    std::unique_ptr<QWidget> m_window;
    LabelWidthFloatPanel *m_label = nullptr;
    FloatPanel *m_panel = nullptr;
    QPushButton *m_content = nullptr;
};

void FloatPanelTest::init()
{
    m_window = std::make_unique<QWidget>();
    m_label = new LabelWidthFloatPanel(m_window.get());
    m_label->setText("24FPS");
    m_panel = new FloatPanel;
    m_content = new QPushButton("choice", m_panel);
    m_content->setFixedSize(120, 90);
    (new QVBoxLayout(m_panel))->addWidget(m_content);
    m_label->setPanel(m_panel);
    m_label->adjustSize();
    m_window->resize(300, 60);
    m_window->move(200, 200);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
}

void FloatPanelTest::opensAndCloses_data()
{
    const TestTable<Action, Action> row("open", "close");
    const auto key = [](Qt::Key code) {
        return Action([code](FloatPanelTest *t) { QTest::keyClick(t->m_label, code); });
    };
    const Action click = [](FloatPanelTest *t) { QTest::mouseClick(t->m_label, Qt::LeftButton); };
    const Action escape = [](FloatPanelTest *t) { QTest::keyClick(t->m_content, Qt::Key_Escape); };
    const Action outside = [](FloatPanelTest *t) {
        QTest::mouseClick(t->m_panel, Qt::LeftButton, {}, QPoint(-150, -40));
    };
    // The window system delivers clicks to the open popup, whatever is below it.
    const Action label = [](FloatPanelTest *t) {
        QTest::mouseClick(t->m_panel->windowHandle(), Qt::LeftButton, {},
                          t->m_panel->mapFromGlobal(t->m_label->mapToGlobal(t->m_label->rect().center())));
    };
    row("click, Escape", click, escape);
    row("click, click on the label", click, label);
    row("Space, click outside", key(Qt::Key_Space), outside);
    row("Return, hideManual", key(Qt::Key_Return), Action([](FloatPanelTest *t) { t->m_panel->hideManual(); }));
    const Action assistive = [](FloatPanelTest *t) {
        QAccessibleInterface *const accessible = QAccessible::queryAccessibleInterface(t->m_label);
        QCOMPARE(accessible->role(), QAccessible::ButtonMenu);
        accessible->actionInterface()->doAction(QAccessibleActionInterface::showMenuAction());
    };
    row("assistive program, both ways", assistive, assistive);
    row("Down, disabled", key(Qt::Key_Down), Action([](FloatPanelTest *t) { t->m_panel->setDisplayEnable(false); }));
}

void FloatPanelTest::opensAndCloses()
{
    QFETCH(Action, open);
    QFETCH(Action, close);
    QSignalSpy visible(m_panel, &FloatPanel::sigVisibleChanged);
    open(this);
    QVERIFY(m_panel->isVisible());
    QCOMPARE(m_panel->focusWidget(), m_content);
    close(this);
    QVERIFY(!m_panel->isVisible());
    QCOMPARE(visible.size(), 2);
    QCOMPARE(m_window->focusWidget(), m_label);
}

void FloatPanelTest::disabledPanelStaysClosed()
{
    m_panel->setDisplayEnable(false);
    QTest::mouseClick(m_label, Qt::LeftButton);
    QTest::keyClick(m_label, Qt::Key_Space);
    QVERIFY(!m_panel->isVisible());
    m_panel->setDisplayEnable(true);
    QTest::mouseClick(m_label, Qt::RightButton);
    QVERIFY(!m_panel->isVisible());
    QTest::mouseClick(m_label, Qt::LeftButton);
    QVERIFY(m_panel->isVisible());
}

void FloatPanelTest::staysOnScreen_data()
{
    const TestTable<Qt::Alignment> row("corner");
    row("top left", Qt::Alignment(Qt::AlignTop | Qt::AlignLeft));
    row("top right", Qt::Alignment(Qt::AlignTop | Qt::AlignRight));
    row("bottom left", Qt::Alignment(Qt::AlignBottom | Qt::AlignLeft));
    row("bottom right", Qt::Alignment(Qt::AlignBottom | Qt::AlignRight));
}

void FloatPanelTest::staysOnScreen()
{
    QFETCH(Qt::Alignment, corner);
    const QRect screen = m_window->screen()->availableGeometry();
    m_window->resize(m_label->size());
    m_window->move(corner & Qt::AlignLeft ? screen.left() : screen.right() + 1 - m_window->width(),
                   corner & Qt::AlignTop ? screen.top() : screen.bottom() + 1 - m_window->height());
    m_label->togglePanel();
    QVERIFY(screen.contains(m_panel->geometry()));
    const QRect label(m_label->mapToGlobal(QPoint()), m_label->size());
    QVERIFY(!label.intersects(m_panel->geometry()));
    QCOMPARE(m_panel->size(), m_panel->sizeHint());
}

void FloatPanelTest::newPanelReplacesOldOne()
{
    const QPointer<FloatPanel> old = m_panel;
    auto *const panel = new FloatPanel;
    m_label->setPanel(panel);
    QVERIFY(!old);
    QCOMPARE(panel->parentWidget(), m_label);
    QVERIFY(panel->isWindow());
}

QTEST_MAIN(FloatPanelTest)
#include "tst_float_panel.moc"
