// Linked into every program of a build with the thread sanitizer, to report how Qt synchronizes threads.
//
// The system's Qt is not instrumented, so accesses that its mutexes, wait conditions, threads and queued calls order
// look like races. Suppressing everything near Qt would hide our own races. Instead, this file reports only which
// operation happens before which:
// - Functions that our code calls directly (mutexes, waiting, posting) are overridden by name and forwarded.
// - What a thread did before it created an event happens before the event is delivered. Events of queued calls are
//   created deep inside Qt: an allocator hook reports every block allocated while a signal is emitted or an event
//   posted, and a Qt callback reports every delivery.
// The end of a blocking queued call cannot be observed: such connections still look like races.
//
// This file itself is not instrumented, because it inspects Qt's events.
#include <QCoreApplication>
#include <QMutex>
#include <QSemaphore>
#include <QThread>
#include <QThreadPool>
#include <QWaitCondition>
#include <private/qobject_p.h>

#include <dlfcn.h>
#include <sanitizer/tsan_interface.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <utility>

// The sanitizer's library has this function, but not every compiler has the header.
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*malloced)(const volatile void *, std::size_t),
                                                         void (*freed)(const volatile void *));

namespace
{

/// Qt's function of that mangled name, which this file overrides.
template <typename Function>
Function qtFunction(const char *name)
{
    void *const address = dlsym(RTLD_NEXT, name);
    if (!address) {
        std::fprintf(stderr, "ThreadSanitizer: Qt has no %s\n", name);
        std::abort();
    }
    return reinterpret_cast<Function>(address);
}

/// Above 0 while this thread may create events for other threads.
thread_local int postings = 0;

class Posting
{
public:
    Posting() { ++postings; }
    ~Posting() { --postings; }
    Q_DISABLE_COPY(Posting)
};

void signalBegins(QObject *sender, int, void **)
{
    ++postings;
    if (qobject_cast<QThread *>(sender))
        __tsan_release(sender); // finished()
}

void signalEnds(QObject *, int)
{
    --postings;
}

void blockAllocated(const volatile void *block, std::size_t)
{
    if (postings > 0)
        __tsan_release(const_cast<void *>(block));
}

bool eventArrives(void **receiverAndEvent)
{
    __tsan_acquire(receiverAndEvent[1]);
    return false; // continue with the delivery
}

const bool isWatching = [] {
    static QSignalSpyCallbackSet callbacks = {&signalBegins, nullptr, &signalEnds, nullptr};
    qt_register_signal_spy_callbacks(&callbacks);
    return QInternal::registerCallback(QInternal::EventNotifyCallback, &eventArrives) &&
           __sanitizer_install_malloc_and_free_hooks(&blockAllocated, [](const volatile void *) {}) != 0;
}();

} // namespace

// Options of the sanitizer, set in the program so that they apply however it is started.

extern "C" Q_DECL_EXPORT const char *__tsan_default_options()
{
    return "ignore_noninstrumented_modules=1:second_deadlock_stack=1:allocator_may_return_null=1";
}

extern "C" Q_DECL_EXPORT const char *__tsan_default_suppressions()
{
    return "called_from_lib:libQt5Core.so.5\n"
           "called_from_lib:libglib-2.0.so.0\n"
           // The arguments of a queued call are copied after its event is created.
           "race:QtMetaTypePrivate::QMetaTypeFunctionHelper\n";
}

// Mutexes. Qt's inline functions also use the address of the mutex as the identity of the lock.

void QMutex::lock() QT_MUTEX_LOCK_NOEXCEPT
{
    static const auto real = qtFunction<void (*)(QMutex *)>("_ZN6QMutex4lockEv");
    real(this);
    __tsan_acquire(this);
}

bool QMutex::tryLock(int timeout) QT_MUTEX_LOCK_NOEXCEPT
{
    static const auto real = qtFunction<bool (*)(QMutex *, int)>("_ZN6QMutex7tryLockEi");
    const bool locked = real(this, timeout);
    if (locked)
        __tsan_acquire(this);
    return locked;
}

void QMutex::unlock() noexcept
{
    static const auto real = qtFunction<void (*)(QMutex *)>("_ZN6QMutex6unlockEv");
    __tsan_release(this);
    real(this);
}

void QBasicMutex::lockInternal() QT_MUTEX_LOCK_NOEXCEPT
{
    static const auto real = qtFunction<void (*)(QBasicMutex *)>("_ZN11QBasicMutex12lockInternalEv");
    real(this);
    __tsan_acquire(this);
}

bool QBasicMutex::lockInternal(int timeout) QT_MUTEX_LOCK_NOEXCEPT
{
    static const auto real = qtFunction<bool (*)(QBasicMutex *, int)>("_ZN11QBasicMutex12lockInternalEi");
    const bool locked = real(this, timeout);
    if (locked)
        __tsan_acquire(this);
    return locked;
}

void QBasicMutex::unlockInternal() noexcept
{
    static const auto real = qtFunction<void (*)(QBasicMutex *)>("_ZN11QBasicMutex14unlockInternalEv");
    __tsan_release(this);
    real(this);
}

bool QWaitCondition::wait(QMutex *mutex, QDeadlineTimer deadline)
{
    static const auto real = qtFunction<bool (*)(QWaitCondition *, QMutex *, QDeadlineTimer)>(
        "_ZN14QWaitCondition4waitEP6QMutex14QDeadlineTimer");
    __tsan_release(mutex);
    const bool woken = real(this, mutex, deadline);
    __tsan_acquire(mutex);
    return woken;
}

bool QWaitCondition::wait(QMutex *mutex, unsigned long time)
{
    static const auto real =
        qtFunction<bool (*)(QWaitCondition *, QMutex *, unsigned long)>("_ZN14QWaitCondition4waitEP6QMutexm");
    __tsan_release(mutex);
    const bool woken = real(this, mutex, time);
    __tsan_acquire(mutex);
    return woken;
}

// Semaphores

void QSemaphore::release(int n)
{
    static const auto real = qtFunction<void (*)(QSemaphore *, int)>("_ZN10QSemaphore7releaseEi");
    __tsan_release(this);
    real(this, n);
}

void QSemaphore::acquire(int n)
{
    static const auto real = qtFunction<void (*)(QSemaphore *, int)>("_ZN10QSemaphore7acquireEi");
    real(this, n);
    __tsan_acquire(this);
}

bool QSemaphore::tryAcquire(int n)
{
    static const auto real = qtFunction<bool (*)(QSemaphore *, int)>("_ZN10QSemaphore10tryAcquireEi");
    const bool acquired = real(this, n);
    if (acquired)
        __tsan_acquire(this);
    return acquired;
}

bool QSemaphore::tryAcquire(int n, int timeout)
{
    static const auto real = qtFunction<bool (*)(QSemaphore *, int, int)>("_ZN10QSemaphore10tryAcquireEii");
    const bool acquired = real(this, n, timeout);
    if (acquired)
        __tsan_acquire(this);
    return acquired;
}

// Threads

bool QThread::wait(QDeadlineTimer deadline)
{
    static const auto real = qtFunction<bool (*)(QThread *, QDeadlineTimer)>("_ZN7QThread4waitE14QDeadlineTimer");
    const bool finished = real(this, deadline);
    if (finished)
        __tsan_acquire(this);
    return finished;
}

bool QThread::wait(unsigned long time)
{
    static const auto real = qtFunction<bool (*)(QThread *, unsigned long)>("_ZN7QThread4waitEm");
    const bool finished = real(this, time);
    if (finished)
        __tsan_acquire(this);
    return finished;
}

/// After finished(), the last action of a thread is to delete the objects that were told to deleteLater() in it. A
/// destructor can be defined by its mangled name only.
extern "C" Q_DECL_EXPORT void destroyQObject(QObject *object) __asm__("_ZN7QObjectD2Ev");

extern "C" Q_DECL_EXPORT void destroyQObject(QObject *object)
{
    static const auto real = qtFunction<void (*)(QObject *)>("_ZN7QObjectD2Ev");
    real(object);
    __tsan_release(QThread::currentThread());
}

void QThreadPool::start(std::function<void()> task, int priority)
{
    static const auto real =
        qtFunction<void (*)(QThreadPool *, std::function<void()>, int)>("_ZN11QThreadPool5startESt8functionIFvvEEi");
    const auto identity = std::make_shared<char>();
    __tsan_release(identity.get());
    real(
        this,
        [identity, task = std::move(task)] {
            __tsan_acquire(identity.get());
            task();
        },
        priority);
}

// Events posted without a signal

void QCoreApplication::postEvent(QObject *receiver, QEvent *event, int priority)
{
    static const auto real =
        qtFunction<void (*)(QObject *, QEvent *, int)>("_ZN16QCoreApplication9postEventEP7QObjectP6QEventi");
    __tsan_release(event);
    real(receiver, event, priority);
}

void QObject::deleteLater()
{
    static const auto real = qtFunction<void (*)(QObject *)>("_ZN7QObject11deleteLaterEv");
    const Posting posting;
    real(this);
}

bool QMetaObject::invokeMethodImpl(QObject *object, QtPrivate::QSlotObjectBase *slot, Qt::ConnectionType type,
                                   void *result)
{
    static const auto real = qtFunction<bool (*)(QObject *, QtPrivate::QSlotObjectBase *, Qt::ConnectionType, void *)>(
        "_ZN11QMetaObject16invokeMethodImplEP7QObjectPN9QtPrivate15QSlotObjectBaseEN2Qt14ConnectionTypeEPv");
    const Posting posting;
    return real(object, slot, type, result);
}

bool QMetaObject::invokeMethod(QObject *object, const char *member, Qt::ConnectionType type,
                               QGenericReturnArgument result, QGenericArgument a0, QGenericArgument a1,
                               QGenericArgument a2, QGenericArgument a3, QGenericArgument a4, QGenericArgument a5,
                               QGenericArgument a6, QGenericArgument a7, QGenericArgument a8, QGenericArgument a9)
{
    using Argument = QGenericArgument;
    static const auto real = qtFunction<bool (*)(QObject *, const char *, Qt::ConnectionType, QGenericReturnArgument,
                                                 Argument, Argument, Argument, Argument, Argument, Argument, Argument,
                                                 Argument, Argument, Argument)>(
        "_ZN11QMetaObject12invokeMethodEP7QObjectPKcN2Qt14ConnectionTypeE22QGenericReturnArgument16QGenericArgumentS7"
        "_S7_S7_S7_S7_S7_S7_S7_S7_");
    const Posting posting;
    return real(object, member, type, result, a0, a1, a2, a3, a4, a5, a6, a7, a8, a9);
}
