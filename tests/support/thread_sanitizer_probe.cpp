// Two threads share data by the mechanism that the first argument names. Without a second argument they synchronize
// correctly, and the thread sanitizer must report nothing; with one they race, and it must report the race although it
// knows how Qt synchronizes.
#include <QCoreApplication>
#include <QMap>
#include <QMutex>
#include <QSemaphore>
#include <QThread>
#include <QWaitCondition>

#include <functional>

namespace
{

constexpr int kRounds = 200;
bool isRacing = false;
int shared[kRounds]{};

class Function : public QThread
{
public:
    explicit Function(std::function<void()> function)
        : m_function(std::move(function))
    {
        start();
    }
    ~Function() override { wait(); }
    Q_DISABLE_COPY(Function)

private:
    void run() override { m_function(); }

    const std::function<void()> m_function;
};

/// Runs `hand`, which gives each round to another thread's event loop.
void throughAnEventLoop(const std::function<void(QObject *receiver, int round)> &hand)
{
    QThread thread;
    QObject receiver;
    receiver.moveToThread(&thread);
    thread.start();
    for (int round = 0; round < kRounds; ++round) {
        shared[round] = round;
        hand(&receiver, round);
        if (isRacing)
            shared[round] = 0;
    }
    // After all other calls.
    QMetaObject::invokeMethod(
        &receiver, [&thread] { thread.quit(); }, Qt::QueuedConnection);
    thread.wait();
}

void queuedSignal()
{
    throughAnEventLoop([](QObject *receiver, int round) {
        QObject sender;
        QObject::connect(&sender, &QObject::objectNameChanged, receiver,
                         [](const QString &name) { shared[name.toInt()] += name.size(); });
        sender.setObjectName(QString::number(round));
    });
}

void queuedCall()
{
    throughAnEventLoop([](QObject *receiver, int round) {
        QMetaObject::invokeMethod(
            receiver, [round] { ++shared[round]; }, Qt::QueuedConnection);
    });
}

void mutex()
{
    QMutex mutex;
    const auto count = [&mutex](bool isCareful) {
        for (int i = 0; i < kRounds * 50; ++i) {
            QMutexLocker lock(isCareful ? &mutex : nullptr);
            ++shared[0];
        }
    };
    const Function first([&] { count(true); });
    const Function second([&] { count(!isRacing); });
}

void waitCondition()
{
    QMutex mutex;
    QWaitCondition changed;
    bool isReady = false;
    const Function producer([&] {
        shared[0] = 1;
        {
            const QMutexLocker lock(&mutex);
            isReady = true;
            changed.wakeAll();
        }
        if (isRacing)
            shared[0] = 2;
    });
    {
        const QMutexLocker lock(&mutex);
        while (!isReady)
            changed.wait(&mutex);
    }
    ++shared[0];
}

void semaphore()
{
    QSemaphore free(1), used;
    const Function producer([&] {
        for (int i = 0; i < kRounds; ++i) {
            free.acquire();
            shared[0] = i;
            used.release();
            if (isRacing)
                shared[0] = 0;
        }
    });
    for (int i = 0; i < kRounds; ++i) {
        used.acquire();
        ++shared[0];
        free.release();
    }
}

void finishedThread()
{
    const auto count = [] {
        for (int &value : shared)
            ++value;
    };
    Function thread(count);
    if (!isRacing)
        thread.wait();
    count();
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QMap<QByteArray, void (*)()> ways = {
        {"queued_signal", queuedSignal},   {"queued_call", queuedCall}, {"mutex", mutex},
        {"wait_condition", waitCondition}, {"semaphore", semaphore},    {"finished_thread", finishedThread},
    };
    if (argc < 2 || !ways.contains(argv[1]))
        return 2;
    isRacing = argc > 2;
    ways[argv[1]]();
    return 0;
}
