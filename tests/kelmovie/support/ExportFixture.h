#pragma once

#include "kelmovie/support/RecordingOnDisk.h"
#include "kelmovie/support/ScriptedDecoder.h"
#include "kelmovie/support/ScriptedEncoder.h"

#include "export/ExportInternals.h"
#include "playback/PlaybackEngine.h"
#include "playback/PlaybackInternals.h"
#include "support/EnvironmentChange.h"

#include <KelMovie/KelExportPipeline.h>
#include <KelMovie/KelPlaybackTrackManager.h>

#include <QDir>
#include <QTemporaryDir>
#include <QVector>

#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>

/// Keeps what an export reports, and cancels it, or throws, at a certain point.
class ScriptedMonitor : public KelExportMonitor
{
public:
    void exportProgress(int percent) override
    {
        reports.append(percent);
        cancelled = cancelled || percent >= cancelFromPercent;
        if (percent == throwAtPercent)
            throw std::runtime_error("out of paper");
    }
    bool isExportCancelled() override
    {
        ++questions;
        return cancelled || questions == cancelAtQuestion || (cancelWhen && cancelWhen());
    }

    QVector<int> reports;
    int questions = 0;
    int cancelFromPercent = 101;
    int cancelAtQuestion = -1;
    int throwAtPercent = -1;
    std::function<bool()> cancelWhen;
    bool cancelled = false;
};

/// Exports a recording whose video comes from a script, by a request that the test changes.
class ExportFixture
{
public:
    ExportFixture() = default;
    ~ExportFixture() { setTemporaryPath(defaultTemporaryPath); }
    Q_DISABLE_COPY(ExportFixture)

    /// A new recording, to be exported as MP4.
    void reset(int logicFrames, int fps = 25)
    {
        setTemporaryPath(defaultTemporaryPath);
        outputDir = std::make_unique<QTemporaryDir>();
        temporary = std::make_unique<QTemporaryDir>();
        recording.emplace().frames(logicFrames, fps);
        setTemporaryPath(temporary->path());
        decoder = std::make_shared<DecoderScript>();
        decoder->frameCount = logicFrames;
        encoder = std::make_shared<EncoderScript>();
        monitor = ScriptedMonitor();
        request = KelExportRequest();
        request.outputPath = outputDir->filePath("out.mp4");
        loadManager();
    }
    void loadManager(const KelPlaybackRules &rules = {})
    {
        KelPlaybackDependencies dependencies = KelPlaybackDependencies::real();
        dependencies.nowMs = [] { return 0; };
        dependencies.decoders = scriptedDecoders(decoder);
        manager = kel::PlaybackInternals::load(recording->path(), dependencies, rules);
        request.playbackManager = manager.get();
    }
    kel::PlaybackEngine &engine() { return kel::PlaybackInternals::engine(*manager); }

    bool runExport(const KelExportDependencies &dependencies)
    {
        const auto pipeline = kel::ExportInternals::createPipeline(request, &monitor, dependencies);
        const bool isComplete = pipeline->run();
        error = pipeline->errorString();
        warning = pipeline->warningString();
        failure = pipeline->failure();
        return isComplete;
    }

    QByteArray output() const { return readFile(request.outputPath); }
    /// Nothing of an export is left but its output.
    bool isTidy() const
    {
        return QDir(temporary->path()).isEmpty() &&
               QDir(outputDir->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).size() <= 1;
    }

    const QString defaultTemporaryPath = QDir::tempPath();
    std::unique_ptr<QTemporaryDir> temporary;
    std::unique_ptr<QTemporaryDir> outputDir;
    std::optional<RecordingOnDisk> recording;
    std::shared_ptr<DecoderScript> decoder;
    std::shared_ptr<EncoderScript> encoder;
    std::unique_ptr<KelPlaybackTrackManager> manager;
    ScriptedMonitor monitor;
    KelExportRequest request;
    QString error;
    QString warning;
    KelExportPipeline::Failure failure = KelExportPipeline::Failure::None;
};
