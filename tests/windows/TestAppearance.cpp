// What fields and buttons look like, in light and dark colours.
// SPDX-License-Identifier: MIT
#include "FrameDriver.h"
#include "NewDocument.h"
#include "TempSettings.h"

#include "DeviceInfoDialog.h"
#include "widgets/MessageBoxes.h"

#include <optional>

namespace
{

/// Asks for icons on the buttons of dialogs, as many desktops do.
class CIconStyle : public QProxyStyle
{
public:
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override
    {
        return hint == SH_DialogButtonBox_ButtonsHaveIcons ? 1 : QProxyStyle::styleHint(hint, option, widget, data);
    }
};

} // namespace

class TestAppearance : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QApplication::setPalette(QPalette(Qt::white, QColor(239, 239, 239))); }
    void init() { m_store.emplace(); }
    void cleanup() { QApplication::setPalette(m_palette); }

    void onlyTheInputLooksLikeAnInput_data();
    void onlyTheInputLooksLikeAnInput();
    void fieldsFollowTheColoursOfTheDesktop();
    void noButtonHasAnIcon();

private:
    static QPalette colours(int window, int base);
    /// The colour inside the frame of a field.
    static QColor colourOf(QLineEdit* field)
    {
        return field->grab().toImage().pixelColor(field->width() - 6, field->height() / 2);
    }

    std::optional<CTempSettings> m_store;
    QPalette m_palette = QApplication::palette();
};

QPalette TestAppearance::colours(int window, int base)
{
    QPalette palette(QColor(window, window, window));
    palette.setColor(QPalette::Base, QColor(base, base, base));
    return palette;
}

void TestAppearance::onlyTheInputLooksLikeAnInput_data()
{
    QTest::addColumn<int>("window");
    QTest::addColumn<int>("base");
    QTest::newRow("light") << 239 << 255;
    QTest::newRow("dark") << 53 << 35;
}

void TestAppearance::onlyTheInputLooksLikeAnInput()
{
    QFETCH(const int, window);
    QFETCH(const int, base);
    QApplication::setPalette(colours(window, base));
    const CNewDocument document;
    CDeviceInfoDialog dialog;
    dialog.show();
    QList<QLineEdit*> fields = document.window->findChildren<QLineEdit*>();
    QVERIFY(fields.removeOne(document.newValue()));
    QCOMPARE(fields.size(), 9);
    fields += dialog.findChildren<QLineEdit*>();
    QCOMPARE(fields.size(), 9 + 29);
    QCOMPARE(colourOf(document.newValue()), QColor(base, base, base));
    for (QLineEdit* field : fields) {
        QCOMPARE(field->palette().color(QPalette::Base), QColor(window, window, window));
        if (field->isVisible()) // not on another page
            QCOMPARE(colourOf(field), QColor(window, window, window));
    }
}

void TestAppearance::fieldsFollowTheColoursOfTheDesktop()
{
    QApplication::setPalette(colours(239, 255));
    const CNewDocument document;
    QApplication::setPalette(colours(53, 35));
    auto* field = document.find<QLineEdit>("value range line edit");
    AWAIT_COMPARE(colourOf(field), QColor(53, 53, 53));
    AWAIT_COMPARE(colourOf(document.newValue()), QColor(35, 35, 35));
    QCOMPARE(field->palette().color(QPalette::Text), QApplication::palette().color(QPalette::Text));
}

void TestAppearance::noButtonHasAnIcon()
{
    QApplication::setStyle(new CIconStyle);
    QVERIFY(!QDialogButtonBox(QDialogButtonBox::Ok).button(QDialogButtonBox::Ok)->icon().isNull());
    QStringList seen;
    QStringList icons;
    const CWhenShown<QDialog> watch([&](QDialog* dialog) {
        if (auto* name = dialog->findChild<QLineEdit*>("fileNameEdit")) {
            name->setText("no such file.eds");
            QTest::keyClick(name, Qt::Key_Return); // a box of the file dialog's own comes up
        }
        seen << dialog->metaObject()->className();
        for (const auto* button : dialog->findChildren<QPushButton*>())
            if (!button->icon().isNull())
                icons << dialog->metaObject()->className() + (" " + button->text());
        dialog->reject();
    });
    CFrameDriver driver;
    driver.choose("&Help", "&About Velmora");
    driver.choose("&Help", "About &Qt");
    driver.choose("&Interface", "&Initialize...");
    driver.activate();
    driver.press(Qt::Key_O);
    driver.frame.newDocument()->showDeviceInfo();
    CConnectNodeDialog connecting;
    connecting.show();
    AWAIT_COMPARE(seen.size(), 7);
    QCOMPARE(icons.join(", "), QString());
}

QTEST_MAIN(TestAppearance)
#include "TestAppearance.moc"
