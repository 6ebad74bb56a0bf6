#include "kelmovie/support/RecordFakes.h"
#include "record/KelRecordTrackThreadWrap.h"

#include "support/LogCapture.h"

#include <QtTest>

using std::chrono::milliseconds;

/// The track's thread runs freely; the GUI thread's event loop runs only where a test lets it. That is what the cases
/// are about: completions are delivered late.
class TestRecordThread : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void callsTheTrackInOrderOnItsThread();
    void busyTrackRefusesFrames();
    void pauseAndStopAreForcedBehindALongFrame();
    void stopWaitsForAShortFrame();
    void finishedButUnheardRequestsDoNotBlock();
    void lateCompletionDoesNotFreeABusyTrack();
    void checkpointsDoNotPileUp();
    void drainIsBounded();
    void destructorCompletesTheStop();

private:
    /// What a stop logs, with the end of its waiting.
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

void TestRecordThread::init()
{
    m_track = new GatedTrack;
    m_thread = std::make_unique<KelRecordTrackThreadWrap>(m_track);
    QVERIFY(m_thread->isRunning());
}

void TestRecordThread::cleanup()
{
    if (m_thread)
        m_track->open();
    m_thread.reset();
}

void TestRecordThread::callsTheTrackInOrderOnItsThread()
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

void TestRecordThread::busyTrackRefusesFrames()
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
    QVERIFY(!m_thread->triggerFrame(10)); // the GUI thread has not heard of the end yet
    QVERIFY(QTest::qWaitFor([this] { return m_thread->triggerFrame(11); }));
    QCOMPARE(m_track->calls(2), (QStringList{"frame 0", "frame 11"}));
}

void TestRecordThread::pauseAndStopAreForcedBehindALongFrame()
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

void TestRecordThread::stopWaitsForAShortFrame()
{
    LogCapture log;
    m_track->close();
    m_thread->triggerFrame(0);
    m_track->calls(1);
    // Opened by the stop itself, which logs before it waits.
    const auto previous = qInstallMessageHandler(nullptr);
    static GatedTrack *track;
    static QtMessageHandler next;
    track = m_track;
    next = previous;
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &context, const QString &text) {
        next(type, context, text);
        if (text.contains(QStringLiteral("超时 1000 ms")))
            track->open();
    });
    m_thread->stopRecording(1, 20);
    qInstallMessageHandler(previous);
    QCOMPARE(log.take(), stopLog("线程已空闲"));
}

void TestRecordThread::finishedButUnheardRequestsDoNotBlock()
{
    LogCapture log;
    m_thread->startRecording();
    m_track->calls(1);
    // No completion is delivered in between: all happens in one event handler.
    m_thread->pauseRecording();
    m_thread->startRecording();
    m_thread->pauseRecording();
    m_thread->startRecording();
    QCOMPARE(m_track->calls(5), (QStringList{"start", "pause", "start", "pause", "start"}));
    QCOMPARE(log.take(), QStringList());
}

void TestRecordThread::lateCompletionDoesNotFreeABusyTrack()
{
    m_thread->triggerFrame(0);
    QVERIFY(m_thread->drain(milliseconds(20000)));
    m_track->close();
    m_thread->pauseRecording(); // without delay: the worker is done with the frame
    m_track->calls(2);
    deliverCompletions(); // of the frame
    QVERIFY(!m_thread->triggerFrame(1));
    m_track->open();
    QVERIFY(QTest::qWaitFor([this] { return m_thread->triggerFrame(2); }));
}

void TestRecordThread::checkpointsDoNotPileUp()
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

void TestRecordThread::drainIsBounded()
{
    m_track->close();
    m_thread->stopRecording(5, 200);
    QVERIFY(!m_thread->drain(milliseconds(1)));
    m_track->open();
    QVERIFY(m_thread->drain(milliseconds(20000)));
    QCOMPARE(m_track->calls(0), QStringList{"stop 5 200"});
}

void TestRecordThread::destructorCompletesTheStop()
{
    LogCapture log;
    QStringList calls;
    m_track->close();
    m_thread->triggerFrame(0);
    m_track->calls(1);
    m_track->atEnd = [&](const QStringList &all) { calls = all; };
    m_thread->stopRecording(1, 20);
    m_track->open();
    m_thread.reset();
    QCOMPARE(calls, (QStringList{"frame 0", "stop 1 20"}));
    QVERIFY(log.take().filter("destructor timeout").isEmpty());
}

QTEST_GUILESS_MAIN(TestRecordThread)
#include "tst_record_thread.moc"
