#include "FuzzTarget.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

const std::vector<FuzzTarget> &fuzzTargets()
{
    static const std::vector<FuzzTarget> all = [] {
        std::vector<FuzzTarget> targets;
        for (const auto &ofFile :
             {trackTargets(), soundTargets(), videoTargets(), settingsTargets(), recordingTargets()})
            targets.insert(targets.end(), ofFile.begin(), ofFile.end());
        return targets;
    }();
    return all;
}

const FuzzTarget *findFuzzTarget(const QByteArray &name)
{
    const auto &all = fuzzTargets();
    const auto found = std::find_if(all.begin(), all.end(), [&](const FuzzTarget &each) { return name == each.name; });
    return found != all.end() ? &*found : nullptr;
}

QString scratchPath(const QString &name)
{
    static const QTemporaryDir dir;
    const QString path = dir.filePath(name);
    const QString parent = QFileInfo(path).path();
    if (!QFileInfo::exists(parent))
        QDir().mkpath(parent);
    return path;
}

QString writeScratch(const QString &name, const QByteArray &content)
{
    const QString path = scratchPath(name);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) || file.write(content) != content.size())
        qFatal("cannot write %s", qUtf8Printable(path));
    return path;
}

void expect(bool isKept, const char *promise)
{
    if (isKept)
        return;
    std::fprintf(stderr, "Broken promise: %s\n", promise);
    std::abort();
}
