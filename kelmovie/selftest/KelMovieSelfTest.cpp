#include "selftest/KelMovieSelfTest.h"

#include "audio/capture/SoundDevices.h"
#include "avcodec/CodecLibraries.h"
#include "avcodec/decode/ffv1Decoder.h"
#include "avcodec/decode/h264Decoder.h"
#include "facade/KelMovieUI.h"
#include "keymouse/GlobalShortcut.h"
#include "keymouse/KelKeyMouseHook.h"
#include "screen/KelScreenManager.h"
#include "selftest/FormatCheck.h"
#include "selftest/RecordingCheck.h"

#include <QAudioDeviceInfo>
#include <QGuiApplication>
#include <QScreen>
#include <QSysInfo>
#include <QTemporaryDir>

using namespace av;
using namespace kel;

namespace
{

/// Watches all input and discards it.
class ProbingHook final : public KelKeyMouseHook
{
public:
    explicit ProbingHook(int kinds) { setHookType(kinds); }
    ~ProbingHook() override { setHookType(NoKind); }
};

QString line(const char *label, const QString &value)
{
    return QStringLiteral("%1 %2\n").arg(QLatin1String(label) + QLatin1Char(':'), -18).arg(value);
}

QString orWhyNot(const QString &problem, const QString &value)
{
    return problem.isEmpty() ? value : QStringLiteral("none: ") + problem;
}

QString outputName()
{
    return QAudioDeviceInfo::defaultOutputDevice().deviceName();
}

QString microphoneName()
{
    return QAudioDeviceInfo::defaultInputDevice().deviceName();
}

QString decoders()
{
    QStringList names;
    if (h264Decoder::isSupported())
        names << QStringLiteral("H.264");
    if (ffv1Decoder::isSupported())
        names << QStringLiteral("FFV1");
    return names.isEmpty() ? QStringLiteral("none") : names.join(QStringLiteral(", "));
}

QString hardwareDecoding()
{
    const QString device = h264Decoder::PreferH264DecodeParams(true).deviceType;
    return device.isEmpty() ? QStringLiteral("none") : device;
}

QString screenText(const QScreen &screen)
{
    const QRect area = screen.geometry();
    return QStringLiteral("screen \"%1\": %2x%3 at %4,%5, scale %6")
        .arg(screen.name())
        .arg(area.width())
        .arg(area.height())
        .arg(area.x())
        .arg(area.y())
        .arg(screen.devicePixelRatio());
}

} // namespace

QString KelMovieSelfTest::screenProblem()
{
    return KelScreenManager::instance()->errorString();
}

QString KelMovieSelfTest::inputProblem(bool withKeys)
{
    const ProbingHook hook(withKeys ? KelKeyMouseHook::Keyboard | KelKeyMouseHook::Mouse : KelKeyMouseHook::Mouse);
    return KelKeyMouseHook::errorString();
}

QString KelMovieSelfTest::featureReport()
{
    const QString none = QStringLiteral("none");
    QStringList formats;
    for (int format = 0; format < FormatCheck::kFormatCount; ++format)
        formats << FormatCheck::name(format);
    return line("Version", KelMovieUI::version()) +
           line("System", QStringLiteral("%1, %2, Qt %3")
                              .arg(QSysInfo::prettyProductName(), QSysInfo::currentCpuArchitecture(),
                                   QLatin1String(qVersion()))) +
           line("Export formats", formats.join(QStringLiteral(", "))) + line("Decoders", decoders()) +
           line("Libraries", CodecLibraries::versions().join(QStringLiteral(", "))) +
           line("Hardware decoding", hardwareDecoding()) +
           line("Screen capture", orWhyNot(screenProblem(), KelScreenManager::instance()->backendName())) +
           line("Keyboard and mouse", orWhyNot(inputProblem(true), QStringLiteral("can be watched"))) +
           line("Global shortcuts", orWhyNot(GlobalShortcut().problem(), QStringLiteral("can be set"))) +
           line("System audio", SoundDevices::hasSystemAudio() ? outputName() : none) +
           line("Microphone", SoundDevices::hasMicrophone() ? microphoneName() : none);
}

KelMovieSelfTest::Check KelMovieSelfTest::checkRecording()
{
    Check check;
    check.name = QStringLiteral("Record and play back");
    const QTemporaryDir directory;
    if (!directory.isValid()) {
        check.error = QStringLiteral("cannot create a temporary directory: ") + directory.errorString();
        return check;
    }
    RecordingCheck recording(directory.filePath(QStringLiteral("recording")));
    check.error = recording.run();
    if (check.passed())
        check.findings << recording.finding();
    return check;
}

KelMovieSelfTest::Check KelMovieSelfTest::checkFormats()
{
    Check check;
    check.name = QStringLiteral("Encode and decode");
    const QTemporaryDir directory;
    if (!directory.isValid()) {
        check.error = QStringLiteral("cannot create a temporary directory: ") + directory.errorString();
        return check;
    }
    QStringList problems;
    for (int format = 0; format < FormatCheck::kFormatCount; ++format) {
        const QString name = FormatCheck::name(format);
        const QString problem = FormatCheck::run(format, directory.filePath(name));
        if (problem.isEmpty())
            check.findings << name;
        else
            problems << QStringLiteral("%1: %2").arg(name, problem);
    }
    check.error = problems.join(QStringLiteral("; "));
    return check;
}

KelMovieSelfTest::Check KelMovieSelfTest::checkDevices()
{
    Check check;
    check.name = QStringLiteral("Find devices");
    check.error = screenProblem();
    if (check.passed()) {
        for (const QScreen *const screen : QGuiApplication::screens())
            check.findings << screenText(*screen);
    }
    const QString input = inputProblem(true);
    if (input.isEmpty())
        check.findings << QStringLiteral("keyboard and mouse");
    else if (check.passed())
        check.warnings << QStringLiteral("clicks and keys are not seen: ") + input;
    if (SoundDevices::hasSystemAudio())
        check.findings << QStringLiteral("system audio: ") + outputName();
    else
        check.warnings << QStringLiteral("no device plays sound that could be recorded");
    if (SoundDevices::hasMicrophone())
        check.findings << QStringLiteral("microphone: ") + microphoneName();
    else
        check.warnings << QStringLiteral("there is no microphone");
    return check;
}

QVector<KelMovieSelfTest::Check> KelMovieSelfTest::runChecks()
{
    return {checkRecording(), checkFormats(), checkDevices()};
}
