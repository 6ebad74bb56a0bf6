#include "recorder/GlobalShortcuts.h"

#include "settings/DockSettings.h"

#include <QStringList>

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
    suspend(); // a key combination may have moved to another shortcut
    QStringList problems;
    const auto assign = [&](GlobalShortcut &shortcut, const QString &text) {
        const QKeySequence keys(text, QKeySequence::PortableText);
        const bool isDuplicate = !keys.isEmpty() && (keys == m_record.keys() || keys == m_pause.keys());
        if (isDuplicate)
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

void GlobalShortcuts::suspend()
{
    for (GlobalShortcut *shortcut : {&m_record, &m_pause, &m_stop})
        shortcut->setKeys(QKeySequence());
}
