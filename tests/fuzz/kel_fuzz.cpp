// kel_fuzz TARGET [libFuzzer's arguments]: feeds one target with inputs that libFuzzer makes.
// kel_fuzz --list: the names of the targets.

#include "FuzzTarget.h"

#include <QGuiApplication>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace
{
const FuzzTarget *target = nullptr;
}

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    const QByteArray name = *argc > 1 ? (*argv)[1] : "";
    if (name == "--list") {
        for (const FuzzTarget &each : fuzzTargets())
            std::puts(each.name);
        std::exit(0);
    }
    target = findFuzzTarget(name);
    if (!target) {
        std::fprintf(stderr, "kel_fuzz: unknown target \"%s\"; kel_fuzz --list names all\n", name.constData());
        std::exit(2);
    }
    // libFuzzer gets the arguments without the target.
    (*argv)[1] = (*argv)[0];
    ++*argv;
    --*argc;

    qputenv("QT_QPA_PLATFORM", "offscreen");
    static int qtArgc = 1;
    new QGuiApplication(qtArgc, *argv); // lives until the process ends, which libFuzzer does without leaving main()
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    target->run(QByteArray::fromRawData(reinterpret_cast<const char *>(data), int(size)));
    return 0;
}
