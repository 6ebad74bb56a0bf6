// Two threads share data by the mechanism that the first argument names. Without a second argument they synchronize
// correctly, and the thread sanitizer must report nothing; with one they race, and it must report the race although it
// knows how Qt synchronizes.
#include <QCoreApplication>
#include <QMap>
#include <QMutex>
#include <QSemaphore>
#include <QThread>
#include <QWaitCondition>

#include <array>
#include <functional>
#include <memory>

namespace
{

constexpr int kRounds = 200;
bool isRacing = false;
std::array<int, kRounds> shared{};

} // namespace

Q_DECLARE_METATYPE(std::shared_ptr<int>)

class Producer : public QObject
{
    Q_OBJECT

signals:
    void produced(int index, const std::shared_ptr<int> &value);
};

namespace
{

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

/// A thread with an event loop, and an object that lives in it.
class Loop
{
public:
    Loop()
    {
        object.moveToThread(&m_thread);
        m_thread.start();
    }
    ~Loop()
    {
        QMetaObject::invokeMethod(
            &object, [this] { m_thread.quit(); }, Qt::QueuedConnection); // after all other calls
        m_thread.wait();
    }
    Q_DISABLE_COPY(Loop)

    QObject object;

private:
    QThread m_thread;
};

void queuedSignal()
{
    qRegisterMetaType<std::shared_ptr<int>>();
    Producer producer;
    const Loop loop;
    QObject::connect(&producer, &Producer::produced, &loop.object,
                     [](int index, const std::shared_ptr<int> &value) { shared[std::size_t(index)] += *value; });
    for (int i = 0; i < kRounds; ++i) {
        shared[std::size_t(i)] = i;
        emit producer.produced(i, std::make_shared<int>(i));
        if (isRacing)
            shared[std::size_t(i)] = 0;
    }
}

void queuedCall()
{
    Loop loop;
    for (std::size_t i = 0; i < kRounds; ++i) {
        shared[i] = 1;
        QMetaObject::invokeMethod(
            &loop.object, [i] { ++shared[i]; }, Qt::QueuedConnection);
        if (isRacing)
            shared[i] = 0;
    }
}

void mutex()
{
    QMutex mutex;
    const auto count = [&mutex](bool careless) {
        for (int i = 0; i < kRounds * 50; ++i) {
            if (careless) {
                ++shared[0];
            } else {
                const QMutexLocker lock(&mutex);
                ++shared[0];
            }
        }
    };
    const Function first([&count] { count(false); });
    const Function second([&count] { count(isRacing); });
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
    Function thread([] {
        for (int &value : shared)
            ++value;
    });
    if (!isRacing)
        thread.wait();
    for (int &value : shared)
        ++value;
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

#include "thread_sanitizer_probe.moc"
