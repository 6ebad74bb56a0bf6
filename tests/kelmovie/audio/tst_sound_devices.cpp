#include "audio/capture/SoundDevices.h"

#include <QtTest>

using namespace kel;

class SoundDevicesTest : public QObject
{
    Q_OBJECT

private slots:
    void presence();
};

void SoundDevicesTest::presence()
{
    QVERIFY(SoundDevices::hasMicrophone());
    QVERIFY(SoundDevices::hasSystemAudio());
    const QByteArray server = qgetenv("PULSE_SERVER");
    qputenv("PULSE_SERVER", "unix:/nowhere");
    QVERIFY(!SoundDevices::hasMicrophone());
    QVERIFY(!SoundDevices::hasSystemAudio());
    qputenv("PULSE_SERVER", server);
}

QTEST_GUILESS_MAIN(SoundDevicesTest)
#include "tst_sound_devices.moc"
