#include "record/KelMovieUI.h"

#include "record/KelMultiTrackRecorder.h"

KelMovieUI::KelMovieUI(QObject *parent)
    : QObject(parent)
{
}

KelMovieUI::~KelMovieUI() = default;

KelMultiTrackRecorder *KelMovieUI::createMultiTrackRecorder()
{
    return new KelMultiTrackRecorder(this);
}

QString KelMovieUI::version()
{
    return QStringLiteral("2.0.0-multitrack");
}
