#pragma once

#include <KelMovie/KelConfigIO.h>
#include <KelMovie/KelMovieConfig.h>

#include <QMap>
#include <QVariant>

/// A host's store in memory, in use as long as it lives. The settings start, and end, with their defaults.
class SavingConfigIO final : public KelConfigIO
{
public:
    SavingConfigIO()
    {
        gKelMovieConfig = KelMovieConfig();
        KelMovieConfigInit(this);
    }
    ~SavingConfigIO() override
    {
        KelMovieConfigInit(nullptr);
        gKelMovieConfig = KelMovieConfig();
    }

    QMap<QString, QVariant> saved;
    bool refuses = false; ///< as a store that is read-only

    /// The bound settings, except fonts, as they are now.
    QMap<QString, QVariant> values() const
    {
        QMap<QString, QVariant> all;
        const auto add = [&all](const auto &fields) {
            for (auto field = fields.begin(); field != fields.end(); ++field)
                all[field.key()] = *field.value();
        };
        add(m_colors);
        add(m_bools);
        add(m_ints);
        return all;
    }
    /// Sets all bound numbers and colors, as an edited settings file may.
    void setAll(int number, const QColor &color)
    {
        for (int *const field : qAsConst(m_ints))
            *field = number;
        for (QColor *const field : qAsConst(m_colors))
            *field = color;
    }

    void bindFont(const QString &, QFont *) override {}
    void bindString(const QString &, QString *) override {}
    void bindColor(const QString &key, QColor *field) override { m_colors[key] = field; }
    void bindBool(const QString &key, bool *field) override { m_bools[key] = field; }
    void bindInt(const QString &key, int *field) override { m_ints[key] = field; }
    void saveFont(const QString &key, const QFont &value) override { saved[key] = value; }
    void saveString(const QString &key, const QString &value) override { saved[key] = value; }
    void saveColor(const QString &key, const QColor &value) override { save(m_colors, key, value); }
    void saveBool(const QString &key, bool value) override { save(m_bools, key, value); }
    void saveInt(const QString &key, int value) override { save(m_ints, key, value); }

private:
    template <typename T>
    void save(const QMap<QString, T *> &fields, const QString &key, const T &value)
    {
        if (refuses)
            return;
        saved[key] = value;
        *fields[key] = value;
    }

    QMap<QString, QColor *> m_colors;
    QMap<QString, bool *> m_bools;
    QMap<QString, int *> m_ints;
};
