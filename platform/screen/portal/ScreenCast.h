#pragma once

#include "screen/KelScreenPermission.h"
#include "screen/portal/CastStream.h"
#include "screen/portal/PortalSession.h"
#include "screen/portal/RestoreTokens.h"

#include <QObject>
#include <QRect>
#include <QTimer>
#include <QVector>

#include <memory>
#include <vector>

namespace kel
{

/// The pictures and the pointer of the monitors that a person has chosen to show, shared by all that read them.
///
/// Lives on the GUI thread; the monitors and errorString() may be read on any thread once it is ready.
class ScreenCast : public QObject
{
    Q_OBJECT

public:
    struct Monitor {
        QRect logical; ///< where it is on the desktop
        std::unique_ptr<CastStream> stream;

        /// Pixels of the picture per logical pixel.
        double scale() const;
    };

    /// Asks for the monitors that show `area` (logical pixels of the desktop); `withPointer` when it is wanted. Ends
    /// with answered(), but not before this returns: when all of their first pictures are there, or with the reason why
    /// not. May be given up on any thread.
    static std::shared_ptr<ScreenCast> create(const QRect &area, bool withPointer);

    bool isReady() const { return m_isReady; }
    /// Whether it shows the area, and the pointer as wanted.
    bool shows(const QRect &area, bool withPointer) const;
    /// Otherwise the pointer is part of the pictures where it is wanted.
    bool tellsPointer() const { return m_session && m_session->tellsPointer(); }
    const std::vector<Monitor> &monitors() const { return m_monitors; }

signals:
    void answered(const KelScreenPermission &permission);

private:
    explicit ScreenCast(bool withPointer);

    void open(const QRect &area);
    void start(const QString &restoreToken);
    void onStarted();
    void onDeclined();
    void openMonitors(const QVector<QRect> &shown);
    void checkPictures();
    void onClosed();
    void fail(const QString &error);
    void answer(const KelScreenPermission &permission);

    const bool m_withPointer;
    QVector<QRect> m_needed; // the monitors that show the area
    RestoreTokens m_tokens;
    QString m_usedToken;
    std::unique_ptr<PortalSession> m_session;
    std::vector<Monitor> m_monitors;
    QTimer m_pictureLimit;
    bool m_hasAnswered = false;
    bool m_isReady = false;
};

} // namespace kel
