#include "recorder/GlobalShortcuts.h"

#include "settings/DockSettings.h"

using namespace kel;

GlobalShortcuts::GlobalShortcuts(QObject *parent)
    : QObject(parent)
{
    connect(&m_record, &GlobalShortcut::activated, this, &GlobalShortcuts::recordPressed);
    connect(&m_pause, &GlobalShortcut::activated, this, &GlobalShortcuts::pausePressed);
    connect(&m_stop, &GlobalShortcut::activated, this, &GlobalShortcuts::stopPressed);
}

QString GlobalShortcuts::apply(const DockSettings &settings)
{
    suspend(); // one may want what another one had
    QStringList problems;
    const auto take = [&](GlobalShortcut &shortcut, const QString &text) {
        const QKeySequence keys(text, QKeySequence::PortableText);
        const bool isTwice = !keys.isEmpty() && (keys == m_record.keys() || keys == m_pause.keys());
        if (isTwice)
            problems += tr("%1 is used twice.").arg(keys.toString(QKeySequence::NativeText));
        else if (!shortcut.setKeys(keys))
            problems += tr("%1 does not work everywhere: %2", "%1 is a key combination, %2 a sentence that says why")
                            .arg(keys.toString(QKeySequence::NativeText), shortcut.errorString());
    };
    take(m_record, settings.recordKeys);
    take(m_pause, settings.pauseKeys);
    take(m_stop, settings.stopKeys);
    return problems.join(QLatin1Char('\n'));
}

void GlobalShortcuts::suspend()
{
    for (GlobalShortcut *shortcut : {&m_record, &m_pause, &m_stop})
        shortcut->setKeys(QKeySequence());
}
