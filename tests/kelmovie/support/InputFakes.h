#pragma once

#include "keymouse/KelKeyMouseHook.h"
#include "keymouse/KeyMouseHub.h"
#include "screen/FailedScreenStreamer.h"
#include "screen/KelScreenManager.h"

#include <QString>

#include <memory>
#include <mutex>

/// In place of keyboard and mouse: only what the test delivers to the hub happens.
class ScriptedInput
{
public:
    ScriptedInput() { kel::KeyMouseHub::instance().setSource(std::make_unique<Silence>()); }
    ~ScriptedInput() { kel::KeyMouseHub::instance().setSource(nullptr); }
    Q_DISABLE_COPY(ScriptedInput)

    void key(int key, int state) { kel::KeyMouseHub::instance().deliver(KelKeyboardEvent{key, state}); }
    void button(int button, int state, QPoint at)
    {
        kel::KeyMouseHub::instance().deliver(KelMouseEvent{button, at, state});
    }
    /// As where input knows nothing about the pointer.
    void buttonSomewhere(int button, int state)
    {
        kel::KeyMouseHub::instance().deliver(KelMouseEvent{button, {}, state, false});
    }
    void wheel(int delta) { kel::KeyMouseHub::instance().deliver(KelWheelEvent{delta, QPoint(-7, -7)}); }
    bool isWatched(int kind) const { return kel::KeyMouseHub::instance().wantedKinds() & kind; }

private:
    struct Silence : kel::KeyMouseEventSource {
        void update() override {}
    };
};

/// In place of the screen: a pointer that is where the test says.
class ScriptedPointer
{
public:
    ScriptedPointer() { KelScreenManager::instance()->setBackend(std::make_unique<Backend>(m_state)); }
    ~ScriptedPointer() { KelScreenManager::instance()->setBackend(nullptr); }
    Q_DISABLE_COPY(ScriptedPointer)

    void set(const KelCursorPixmap &cursor)
    {
        std::lock_guard lock(m_state->mutex);
        m_state->cursor = cursor;
    }

private:
    struct State {
        std::mutex mutex;
        KelCursorPixmap cursor;
    };
    struct Source : KelCursorSource {
        explicit Source(std::shared_ptr<State> shared)
            : state(std::move(shared))
        {
        }
        KelCursorPixmap read() override
        {
            std::lock_guard lock(state->mutex);
            return state->cursor;
        }
        const std::shared_ptr<State> state;
    };
    struct Backend : KelScreenBackend {
        explicit Backend(std::shared_ptr<State> shared)
            : state(std::move(shared))
        {
        }
        std::unique_ptr<KelScreenStreamer> createStreamer(const QRect &, bool) override
        {
            return std::make_unique<kel::FailedScreenStreamer>(QStringLiteral("no pictures here"));
        }
        std::unique_ptr<KelCursorSource> createCursorSource(const QRect &) override
        {
            return std::make_unique<Source>(state);
        }
        const std::shared_ptr<State> state;
    };

    const std::shared_ptr<State> m_state = std::make_shared<State>();
};
