#include "dockicon/KelDockIcon.h"
#include "style/KelStyleTheme.h"

#include <QApplication>
#include <QFontMetricsF>
#include <QLabel>
#include <QSignalSpy>
#include <QTemporaryFile>
#include <QtTest>

// A missing glyph would be taken from another font, and a glyph outside of its square would be clipped by its button.

class StyleThemeTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { KelStyleTheme::instance()->setMode(KelStyleTheme::Mode::Application); }

    void macros()
    {
        KelStyleTheme::instance()->setMode(KelStyleTheme::Mode::Light);
        const auto expanded = [](const char *sheet, double scale = 1.0) {
            return KelStyleTheme::instance()->expanded(sheet, scale);
        };
        QCOMPARE(expanded("a: sca(12)px;"), "a: 12px;");
        QCOMPARE(expanded("sca(6) sca( 10 )", 1.25), "8 13"); // rounded
        QCOMPARE(expanded("sca(1) sca(0)", 0.4), "1 0");      // at least 1 for positive sizes
        QCOMPARE(expanded("margin: sca(-3)px", 2.0), "margin: -6px");
        QCOMPARE(expanded("color:var(ColorMain);"), "color:rgba(51, 136, 255, 255);");
        QCOMPARE(expanded("var(ColorHover)"), "rgba(31, 35, 41, 20)");
        QCOMPARE(expanded("sca(1)px solid var(ColorBg1) end", 2.0), "2px solid rgba(244, 245, 247, 255) end");
        QCOMPARE(expanded("qscanner(1) rgba(1, 2, 3, 4)", 2.0), "qscanner(1) rgba(1, 2, 3, 4)");
    }

    void textIsReadable()
    {
        // The contrast ratio of the accessibility guidelines.
        const auto luminance = [](const QColor &color) {
            const auto linear = [](double v) { return v <= 0.03928 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4); };
            return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
        };
        KelStyleTheme *const theme = KelStyleTheme::instance();
        for (const auto mode : {KelStyleTheme::Mode::Light, KelStyleTheme::Mode::Dark}) {
            theme->setMode(mode);
            for (const char *const text : {"ColorText", "ColorTextWeak"}) {
                for (const char *const background : {"ColorBg1", "ColorBg2", "ColorBg3"}) {
                    const double a = luminance(theme->color(text)) + 0.05;
                    const double b = luminance(theme->color(background)) + 0.05;
                    QVERIFY2(std::max(a, b) / std::min(a, b) >= 4.5,
                             qPrintable(QString("%1 on %2").arg(text, background)));
                }
            }
            QCOMPARE(QGuiApplication::palette().color(QPalette::Window), theme->color("ColorBg1"));
        }
    }

    void styledWidgetFollowsTheme()
    {
        KelStyleTheme *const theme = KelStyleTheme::instance();
        theme->setMode(KelStyleTheme::Mode::Light);
        QTemporaryFile sheet;
        QVERIFY(sheet.open());
        sheet.write("QLabel { background: var(ColorBg2); min-width: sca(10)px; }");
        sheet.close();
        QLabel label;
        theme->appleStyleTo(&label, {"/no/such/sheet", 1});
        theme->appleStyleTo(&label, {sheet.fileName(), 3});
        const auto background = [&label] { return label.grab().toImage().pixelColor(2, 2); };
        QCOMPARE(background(), theme->color("ColorBg2"));
        QVERIFY(label.minimumSizeHint().width() >= 30);

        QSignalSpy changed(theme, &KelStyleTheme::changed);
        theme->setMode(KelStyleTheme::Mode::Dark);
        QCOMPARE(changed.size(), 1);
        QVERIFY(theme->isDark());
        QCOMPARE(background(), theme->color("ColorBg2"));
        theme->setMode(KelStyleTheme::Mode::Dark);
        QCOMPARE(changed.size(), 1);
    }

    void followsPalette()
    {
        KelStyleTheme *const theme = KelStyleTheme::instance();
        const QPalette before = QGuiApplication::palette();
        QVERIFY(!theme->isDark());
        theme->setMode(KelStyleTheme::Mode::Dark);
        theme->setMode(KelStyleTheme::Mode::Application);
        QVERIFY(!theme->isDark());
        QCOMPARE(QGuiApplication::palette().color(QPalette::Window), before.color(QPalette::Window));

        QApplication::setPalette(QPalette(Qt::darkGray, Qt::black)); // as when a desktop switches to dark
        QVERIFY(theme->isDark());
        QApplication::setPalette(before);
        QVERIFY(!theme->isDark());
    }

    void missingSheetIsLogged()
    {
        QLabel label;
        label.setStyleSheet("QLabel { color: red }");
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^\\[KelStyleTheme\\] No style sheet :/no/such"));
        KelStyleTheme::instance()->appleStyleTo(&label, {":/no/such"});
        QCOMPARE(label.styleSheet(), QString("QLabel { color: red }"));
        QTest::ignoreMessage(QtWarningMsg, "[KelStyleTheme] No color is named ColorNobody");
        QVERIFY(!KelStyleTheme::instance()->color("ColorNobody").isValid());
    }

    void glyphsFitIntoTheirSquares()
    {
        using KelDockIcon::Glyph;
        const QFontMetricsF metrics(KelDockIcon::font(240));
        QCOMPARE(metrics.height(), 240.0);
        int count = 0;
        for (char16_t code = 0xe600; code < 0xe800; ++code) {
            if (!metrics.inFont(QChar(code)))
                continue;
            ++count;
            const QRectF box = metrics.boundingRect(QChar(code)).translated(0, metrics.ascent());
            QVERIFY2(!box.isEmpty() && QRectF(0, 0, 240, 240).contains(box), qPrintable(QString::number(code, 16)));
            QVERIFY(std::abs(box.center().y() - 120) < 30);
        }
        QVERIFY(count >= 20);
        for (const Glyph glyph : {Glyph::Pause, Glyph::Play, Glyph::Record, Glyph::Stop})
            QVERIFY(metrics.inFont(QChar(char16_t(glyph))));
        const QImage icon = KelDockIcon::icon(Glyph::Stop, Qt::red).pixmap(32, 32).toImage();
        QCOMPARE(icon.pixelColor(16, 16), QColor(Qt::red));
        QCOMPARE(icon.pixelColor(0, 0).alpha(), 0);
    }
};

QTEST_MAIN(StyleThemeTest)
#include "tst_style_theme.moc"
