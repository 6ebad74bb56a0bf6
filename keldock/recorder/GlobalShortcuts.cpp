#include "recorder/GlobalShortcuts.h"

#include "settings/DockSettings.h"

#include <QStringList>

using namespace kel;

namespace
{

/// Other keys are needed for typing, which they would no longer do in any program.
bool canBeGlobal(const QKeySequence &keys)
{
    const int combination = keys[0];
    const int key = combination & ~Qt::KeyboardModifierMask;
    const bool isFunctionKey = (key >= Qt::Key_F1 && key <= Qt::Key_F35) || key == Qt::Key_Pause ||
                               key == Qt::Key_Print || key == Qt::Key_ScrollLock;
    return isFunctionKey || combination & (Qt::CTRL | Qt::ALT | Qt::META);
}

} // namespace

GlobalShortcuts::GlobalShortcuts(QObject *parent)
    : QObject(parent)
    , m_record({QStringLiteral("record"), tr("Record the screen")})
    , m_pause({QStringLiteral("pause"), tr("Pause and resume the recording")})
    , m_stop({QStringLiteral("stop"), tr("Stop the recording")})
{
    for (GlobalShortcut *const shortcut : {&m_record, &m_pause, &m_stop})
        connect(shortcut, &GlobalShortcut::changed, this, [this, shortcut] { report(shortcut->errorString()); });
    connect(&m_record, &GlobalShortcut::activated, this, &GlobalShortcuts::recordPressed);
    connect(&m_pause, &GlobalShortcut::activated, this, &GlobalShortcuts::pausePressed);
    connect(&m_stop, &GlobalShortcut::activated, this, &GlobalShortcuts::stopPressed);
}

QString GlobalShortcuts::apply(const DockSettings &settings)
{
    suspend(); // a key combination may have moved to another shortcut
    QStringList problems;
    const auto assign = [&](GlobalShortcut &shortcut, const QString &text) {
        const QKeySequence keys(text, QKeySequence::PortableText);
        const bool isDuplicate = !keys.isEmpty() && (keys == m_record.keys() || keys == m_pause.keys());
        if (!keys.isEmpty() && !canBeGlobal(keys))
            problems += tr("%1 alone would be taken from every program. Add Ctrl, Alt or Win, or use a function key.")
                            .arg(keys.toString(QKeySequence::NativeText));
        else if (isDuplicate)
            problems += tr("%1 is assigned twice.").arg(keys.toString(QKeySequence::NativeText));
        else if (!shortcut.setKeys(keys))
            problems +=
                tr("%1 does not work in every program: %2", "%1 is a key combination, %2 a sentence with the reason")
                    .arg(keys.toString(QKeySequence::NativeText), shortcut.errorString());
    };
    assign(m_record, settings.recordKeys);
    assign(m_pause, settings.pauseKeys);
    assign(m_stop, settings.stopKeys);
    return problems.join(QLatin1Char('\n'));
}

/// All shortcuts have the same answer of the desktop, which the user reads once.
void GlobalShortcuts::report(const QString &problem)
{
    const bool isNews = problem != m_reported;
    m_reported = problem;
    emit changed(isNews ? problem : QString());
}

void GlobalShortcuts::suspend()
{
    for (GlobalShortcut *shortcut : {&m_record, &m_pause, &m_stop})
        shortcut->setKeys(QKeySequence());
}
