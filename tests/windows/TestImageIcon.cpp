// The icons from the images that are compiled in: read when needed, and as sharp as icons that are read at once.
// SPDX-License-Identifier: MIT
#include "widgets/ImageIcon.h"

#include <QDir>
#include <QIcon>
#include <QPainter>
#include <QTest>

// The macros must stand outside any namespace.
static void unregisterImages()
{
    Q_CLEANUP_RESOURCE(velmora);
}
static void registerImages()
{
    Q_INIT_RESOURCE(velmora);
}

class TestImageIcon : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void imageIsReadWhenItIsNeeded();
    void pixmapsAreThoseOfTheImage_data();
    void pixmapsAreThoseOfTheImage();
    void paintsTheImage();
    void sizesAreNeverEnlarged();
    void copiesShowTheImage();
    void sizesAreThoseOfTheImage();
    void unknownImageShowsNothing();
    void everyImageIsTheFileOfItsName();
    void noTwoImagesAreAlike();

private:
    QIcon m_early; // made before there are images
};

void TestImageIcon::initTestCase()
{
    unregisterImages();
    m_early = imageIcon("fileopen.png");
    QVERIFY(!QFile::exists(":/images/fileopen.png"));
    registerImages();
    QVERIFY(QFile::exists(":/images/fileopen.png"));
}

void TestImageIcon::imageIsReadWhenItIsNeeded()
{
    QVERIFY(!m_early.isNull());
    QCOMPARE(m_early.pixmap(32).toImage(), QIcon(":/images/fileopen.png").pixmap(32).toImage());
}

void TestImageIcon::pixmapsAreThoseOfTheImage_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<qreal>("ratio");
    for (const int size : { 16, 24, 64, 200 })
        for (const qreal ratio : { 1.0, 1.5, 2.0, 3.0 })
            QTest::addRow("%d at %g", size, ratio) << size << ratio;
}

void TestImageIcon::pixmapsAreThoseOfTheImage()
{
    QFETCH(int, size);
    QFETCH(qreal, ratio);
    const QIcon icon = imageIcon("program.png");
    const QIcon readAtOnce(":/images/program.png");
    for (const QIcon::Mode mode : { QIcon::Normal, QIcon::Disabled, QIcon::Active, QIcon::Selected }) {
        const QPixmap pixmap = icon.pixmap(QSize(size, size), ratio, mode);
        const QPixmap expected = readAtOnce.pixmap(QSize(size, size), ratio, mode);
        QVERIFY(!expected.isNull());
        QCOMPARE(pixmap.size(), expected.size());
        QCOMPARE(pixmap.devicePixelRatio(), expected.devicePixelRatio());
        QCOMPARE(pixmap.toImage(), expected.toImage());
    }
}

void TestImageIcon::paintsTheImage()
{
    const auto painted = [](const QIcon& icon, QSize size, Qt::Alignment alignment) {
        QImage image(size, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::white);
        QPainter painter(&image);
        icon.paint(&painter, image.rect(), alignment);
        return image;
    };
    const QIcon readAtOnce(":/images/exit.png");
    for (const QSize size : { QSize(40, 40), QSize(100, 40), QSize(40, 100), QSize(200, 200) })
        for (const Qt::AlignmentFlag alignment : { Qt::AlignCenter, Qt::AlignLeft, Qt::AlignRight, Qt::AlignBottom }) {
            const QImage expected = painted(readAtOnce, size, alignment);
            QVERIFY(expected != painted(QIcon(), size, alignment));
            QCOMPARE(painted(imageIcon("exit.png"), size, alignment), expected);
        }
}

void TestImageIcon::sizesAreNeverEnlarged()
{
    const QIcon readAtOnce(":/images/exit.png");
    for (const QSize size : { QSize(16, 16), QSize(64, 64), QSize(200, 200), QSize(32, 16), QSize(16, 200) })
        QCOMPARE(imageIcon("exit.png").actualSize(size), readAtOnce.actualSize(size));
}

void TestImageIcon::copiesShowTheImage()
{
    QIcon copy = imageIcon("document.png");
    const QIcon kept = copy;
    copy.addPixmap(QPixmap(8, 8)); // makes the copy one of its own
    QCOMPARE(copy.pixmap(48).toImage(), QIcon(":/images/document.png").pixmap(48).toImage());
    QCOMPARE(kept.pixmap(48).toImage(), QIcon(":/images/document.png").pixmap(48).toImage());
}

void TestImageIcon::sizesAreThoseOfTheImage()
{
    QCOMPARE(imageIcon("fileopen.png").availableSizes(), QList<QSize>{ QSize(64, 64) });
}

void TestImageIcon::unknownImageShowsNothing()
{
    QVERIFY(imageIcon("no such.png").pixmap(16).isNull());
}

void TestImageIcon::everyImageIsTheFileOfItsName()
{
    const QDir files(VELMORA_TEST_DATA "/../../src/images", "*.png");
    QVERIFY(!files.entryList().isEmpty());
    QCOMPARE(QDir(":/images").entryList(), files.entryList());
    for (const QString& name : files.entryList()) {
        const QImage image(":/images/" + name);
        QVERIFY2(!image.isNull(), qPrintable(name));
        QVERIFY2(image == QImage(files.filePath(name)), qPrintable(name));
    }
}

// Otherwise tests that compare images could not tell them apart.
void TestImageIcon::noTwoImagesAreAlike()
{
    const QStringList names = QDir(":/images").entryList();
    for (const QString& name : names)
        for (const QString& other : names)
            QCOMPARE(QImage(":/images/" + name) == QImage(":/images/" + other), name == other);
}

QTEST_MAIN(TestImageIcon)
#include "TestImageIcon.moc"
