#include "kelmovie/support/RecordFakes.h"
#include "record/KelRecordTrackThreadWrap.h"

#include "support/LogCapture.h"

#include <QtTest>

#include <functional>
#include <thread>

using std::chrono::milliseconds;

namespace
{
/// Calls back as soon as a line with a given text is logged.
class AtLogLine
{
public:
    AtLogLine(const QString &text, std::function<void()> action)
    {
        s_text = text;
        s_action = std::move(action);
        s_next = qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &context, const QString &line) {
            s_next(type, context, line);
            if (line.contains(s_text))
                s_action();
        });
    }
    ~AtLogLine() { qInstallMessageHandler(s_next); }
    AtLogLine(const AtLogLine &) = delete;
    AtLogLine &operator=(const AtLogLine &) = delete;

private:
    static inline QString s_text;
    static inline std::function<void()> s_action;
    static inline QtMessageHandler s_next;
};
} // namespace

/// The track's thread runs freely, but the GUI thread's event loop only where a test runs it, so that completions are
/// delivered late.
class RecordThreadTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_track = new GatedTrack;
        m_thread = std::make_unique<KelRecordTrackThreadWrap>(m_track);
        QVERIFY(m_thread->isRunning());
    }

    void cleanup()
    {
        if (m_thread)
            m_track->open();
        m_thread.reset();
    }

    void callsTheTrackInOrderOnItsThread()
    {
        QCOMPARE(m_track->thread(), m_thread.get());
        m_thread->startRecording();
        QVERIFY(QTest::qWaitFor([this] { return m_thread->triggerFrame(0); }));
        m_thread->checkpoint(1);
        m_thread->pauseRecording();
        m_thread->startRecording();
        m_thread->stopRecording(1, 40);
        QCOMPARE(m_track->calls(6), (QStringList{"start", "frame 0", "checkpoint 1", "pause", "start", "stop 1 40"}));
        QCOMPARE(m_thread->trackFrameCount(), 0);
    }

    void busyTrackRefusesFrames()
    {
        m_track->close();
        QVERIFY(m_thread->triggerFrame(0));
        m_track->calls(1);
        for (int i = 1; i < 10; ++i) {
            QVERIFY(!m_thread->triggerFrame(i));
            deliverCompletions();
        }
        m_track->open();
        QVERIFY(m_thread->drain(milliseconds(20000)));
        QVERIFY(!m_thread->triggerFrame(10)); // the completion has not been delivered yet
        QVERIFY(QTest::qWaitFor([this] { return m_thread->triggerFrame(11); }));
        QCOMPARE(m_track->calls(2), (QStringList{"frame 0", "frame 11"}));
    }

    void pauseAndStopAreQueuedBehindALongFrame()
    {
        LogCapture log;
        m_track->close();
        m_thread->triggerFrame(0);
        m_track->calls(1);
        m_thread->pauseRecording();
        QCOMPARE(log.take(),
                 QStringList{"W [Thread Warning] KelRecordTrackThreadWrap::pauseRecording timeout, forcing pause"});
        m_thread->stopRecording(1, 20);
        QCOMPARE(log.take(), stopLog("等待超时，强制停止"));
        QCOMPARE(m_track->calls(1), QStringList{"frame 0"});
        m_track->open();
        QCOMPARE(m_track->calls(3), (QStringList{"frame 0", "pause", "stop 1 20"}));
    }

    void stopWaitsForAShortFrame()
    {
        LogCapture log;
        m_track->close();
        m_thread->triggerFrame(0);
        m_track->calls(1);
        const AtLogLine waiting("超时 1000 ms", [this] { m_track->open(); });
        m_thread->stopRecording(1, 20);
        QCOMPARE(log.take(), stopLog("线程已空闲"));
    }

    void undeliveredCompletionsDoNotBlock()
    {
        LogCapture log;
        m_thread->startRecording();
        m_track->calls(1);
        // As in one event handler: no completion is delivered in between.
        m_thread->pauseRecording();
        m_thread->startRecording();
        m_thread->pauseRecording();
        m_thread->startRecording();
        QCOMPARE(m_track->calls(5), (QStringList{"start", "pause", "start", "pause", "start"}));
        QCOMPARE(log.take(), QStringList());
    }

    void lateCompletionDoesNotFreeABusyTrack()
    {
        m_thread->triggerFrame(0);
        QVERIFY(m_thread->drain(milliseconds(20000)));
        m_track->close();
        m_thread->pauseRecording(); // does not wait: the worker has finished the frame
        m_track->calls(2);
        deliverCompletions(); // of the frame
        QVERIFY(!m_thread->triggerFrame(1));
        m_track->open();
        QVERIFY(QTest::qWaitFor([this] { return m_thread->triggerFrame(2); }));
    }

    void checkpointsDoNotAccumulate()
    {
        m_track->close();
        m_thread->triggerFrame(0);
        m_track->calls(1);
        for (int i = 0; i < 100; ++i)
            m_thread->checkpoint(i);
        m_track->open();
        QVERIFY(m_thread->drain(milliseconds(20000)));
        const QStringList calls = m_track->calls(0);
        QVERIFY2(calls.size() >= 2 && calls.size() <= 4, qPrintable(calls.join(',')));
        m_thread->checkpoint(500);
        QVERIFY(m_thread->drain(milliseconds(20000)));
        QCOMPARE(m_track->calls(0).last(), QString("checkpoint 500"));
    }

    void drainIsBounded()
    {
        m_track->close();
        m_thread->stopRecording(5, 200);
        QVERIFY(!m_thread->drain(milliseconds(1)));
        m_track->open();
        QVERIFY(m_thread->drain(milliseconds(20000)));
        QCOMPARE(m_track->calls(0), QStringList{"stop 5 200"});
    }

    void destructorCompletesAStopBehindASlowFrame()
    {
        QStringList calls;
        m_track->close();
        m_thread->triggerFrame(0);
        m_track->calls(1);
        m_track->atEnd = [&](const QStringList &all) { calls = all; };
        m_thread->stopRecording(1, 20);
        std::thread opener;
        const AtLogLine quitting("destructor timeout, forcing quit", [&, thread = m_thread.get()] {
            opener = std::thread([this, thread] {
                thread->wait(200); // lets the destructor go on to end the thread
                m_track->open();
            });
        });
        m_thread.reset();
        QVERIFY(opener.joinable());
        opener.join();
        QCOMPARE(calls, (QStringList{"frame 0", "stop 1 20"}));
    }

private:
    /// The log of a stop; `ended` is how its wait ends.
    static QStringList stopLog(const QString &ended)
    {
        return {"W [KelRecordTrackThreadWrap::stopRecording] ========== 开始 ==========",
                "W [KelRecordTrackThreadWrap] 等待线程空闲 (超时 1000 ms)", "W [KelRecordTrackThreadWrap] " + ended,
                "W [KelRecordTrackThreadWrap] 发送 doStopRecording 信号",
                "W [KelRecordTrackThreadWrap::stopRecording] ========== 完成 (异步) =========="};
    }
    void deliverCompletions() { QCoreApplication::processEvents(); }

    GatedTrack *m_track = nullptr; // owned by the thread
    std::unique_ptr<KelRecordTrackThreadWrap> m_thread;
};

QTEST_GUILESS_MAIN(RecordThreadTest)
#include "tst_record_thread.moc"
