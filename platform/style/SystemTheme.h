#pragma once

#include <QObject>

#include <memory>

namespace kel
{

/// What the desktop says about light and dark, apart from what Qt makes of it. GUI thread.
class SystemTheme : public QObject
{
    Q_OBJECT

public:
    enum class Wish { Unknown, Light, Dark };

    /// The implementation for the desktop at hand.
    static std::unique_ptr<SystemTheme> create();

    Wish wish() const { return m_wish; }

signals:
    void wishChanged();

protected:
    void setWish(Wish wish);

private:
    Wish m_wish = Wish::Unknown;
};

} // namespace kel
