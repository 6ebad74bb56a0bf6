#include "library/RecordingDelegate.h"

#include "common/Units.h"
#include "dockicon/KelDockIcon.h"
#include "library/RecordingDetails.h"
#include "library/RecordingsModel.h"
#include "style/KelStyleTheme.h"
#include "widget/ScaleFactor.h"

#include <QLocale>
#include <QPainter>
#include <QPainterPath>

namespace
{

/// The positions of the parts of a row, in logical pixels.
struct RowLayout {
    RowLayout(const QStyleOptionViewItem &option, int lines)
        : scale(scaleFactor(option.widget))
        , nameFont(option.font)
    {
        nameFont.setBold(true);
        const int margin = px(8);
        frame = option.rect.adjusted(margin / 2, margin / 4, -margin / 2, -margin / 4);
        thumbnail = QRect(frame.left() + margin, frame.center().y() - px(36), px(128), px(72));
        const int left = thumbnail.right() + px(14);
        const int lineHeight = QFontMetrics(nameFont).height();
        const int step = lineHeight + px(4);
        name = QRect(left, frame.center().y() - (step * lines - px(4)) / 2, frame.right() - left - margin, lineHeight);
        facts = name.translated(0, step);
        status = facts.translated(0, step);
    }

    int px(double pixels) const { return qRound(pixels * scale); }

    double scale;
    QFont nameFont;
    QRect frame;
    QRect thumbnail;
    QRect name;
    QRect facts;
    QRect status;
};

QColor themeColor(const char *name)
{
    return KelStyleTheme::instance()->color(QLatin1String(name));
}

void paintFrame(QPainter *painter, const RowLayout &layout, QStyle::State state)
{
    const bool isSelected = state & QStyle::State_Selected;
    painter->setPen(state & QStyle::State_HasFocus ? QPen(themeColor("ColorMain"), layout.px(2)) : QPen(Qt::NoPen));
    painter->setBrush(isSelected                        ? themeColor("ColorPressed")
                      : state & QStyle::State_MouseOver ? themeColor("ColorHover")
                                                        : QColor(Qt::transparent));
    painter->drawRoundedRect(layout.frame, layout.px(6), layout.px(6));
}

void paintThumbnail(QPainter *painter, const RowLayout &layout, const QImage &thumbnail)
{
    QPainterPath rounded;
    rounded.addRoundedRect(layout.thumbnail, layout.px(4), layout.px(4));
    painter->save();
    painter->setClipPath(rounded);
    painter->fillRect(layout.thumbnail, themeColor("ColorBg3Border"));
    if (thumbnail.isNull()) {
        painter->setFont(KelDockIcon::font(layout.px(28)));
        painter->setPen(themeColor("ColorTextWeak"));
        painter->drawText(layout.thumbnail, Qt::AlignCenter, KelDockIcon::text(KelDockIcon::Glyph::Screen));
    } else {
        QRect target(QPoint(), thumbnail.size().scaled(layout.thumbnail.size(), Qt::KeepAspectRatio));
        target.moveCenter(layout.thumbnail.center());
        painter->setRenderHint(QPainter::SmoothPixmapTransform);
        painter->fillRect(layout.thumbnail, Qt::black);
        painter->drawImage(target, thumbnail);
    }
    painter->restore();
}

QString factsText(const QModelIndex &index)
{
    QString text = QLocale().toString(index.data(RecordingsModel::SavedRole).toDateTime(), QLocale::ShortFormat);
    const QVariant value = index.data(RecordingsModel::DetailsRole);
    if (value.isValid()) {
        const auto details = value.value<RecordingDetails>();
        const QString separator = QStringLiteral("  \u00b7  ");
        text += separator + Units::clock(details.durationMs) + separator + Units::bytes(details.bytes);
    }
    return text;
}

void paintLine(QPainter *painter, const QRect &line, const QFont &font, const QColor &color, const QString &text)
{
    painter->setFont(font);
    painter->setPen(color);
    painter->drawText(line, Qt::AlignVCenter | Qt::AlignLeft,
                      QFontMetrics(font).elidedText(text, Qt::ElideMiddle, line.width()));
}

} // namespace

void RecordingDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const QString status = index.data(RecordingsModel::StatusRole).toString();
    const RowLayout layout(option, status.isEmpty() ? 2 : 3);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    paintFrame(painter, layout, option.state);
    paintThumbnail(painter, layout, index.data(RecordingsModel::DetailsRole).value<RecordingDetails>().thumbnail);
    paintLine(painter, layout.name, layout.nameFont, themeColor("ColorText"), index.data().toString());
    paintLine(painter, layout.facts, option.font, themeColor("ColorTextWeak"), factsText(index));
    paintLine(painter, layout.status, option.font, themeColor("ColorMain"), status);
    painter->restore();
}

QSize RecordingDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &) const
{
    const double scale = scaleFactor(option.widget);
    return QSize(qRound(360 * scale), qRound(92 * scale));
}

void RecordingDelegate::updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                                             const QModelIndex &index) const
{
    const bool hasStatus = !index.data(RecordingsModel::StatusRole).toString().isEmpty();
    const QRect line = RowLayout(option, hasStatus ? 3 : 2).name;
    const int height = editor->sizeHint().height();
    editor->setGeometry(line.left(), line.center().y() - height / 2, line.width(), height);
}
