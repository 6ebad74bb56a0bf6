#include "lottie/LottieFile.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace kel
{

namespace
{

constexpr double maxRate = 1000;
constexpr double maxFrames = 1e6;
constexpr double maxSide = 16384;
constexpr double maxNumber = 1e6;

bool isWithin(const QJsonValue &value, double low, double high)
{
    return value.isDouble() && value.toDouble() >= low && value.toDouble() <= high;
}

/// The renderer follows a curve through any number that it is given, for hours if need be.
bool isBounded(const QJsonValue &value)
{
    if (value.isDouble())
        return isWithin(value, -maxNumber, maxNumber);
    if (value.isArray()) {
        const QJsonArray array = value.toArray();
        return std::all_of(array.begin(), array.end(), [](const QJsonValue &item) { return isBounded(item); });
    }
    const QJsonObject object = value.toObject();
    return std::all_of(object.begin(), object.end(), [](const QJsonValue &item) { return isBounded(item); });
}

} // namespace

LottieFile::LottieFile(const QString &path, qint64 maxSize)
{
    m_error = read(path, maxSize);
    if (m_error.isEmpty())
        m_error = check();
}

QString LottieFile::read(const QString &path, qint64 maxSize)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return file.errorString();
    m_data = file.read(maxSize + 1); // a stated size may lie
    if (m_data.size() > maxSize)
        return QString("larger than %1 bytes").arg(maxSize);
    return {};
}

QString LottieFile::check() const
{
    QJsonParseError syntax;
    const QJsonDocument document = QJsonDocument::fromJson(m_data, &syntax);
    if (syntax.error != QJsonParseError::NoError)
        return syntax.errorString();
    const QJsonObject root = document.object();
    if (!isWithin(root["fr"], 0.01, maxRate))
        return "no usable frame rate";
    if (!isWithin(root["ip"], 0, maxFrames) || !isWithin(root["op"], 0, maxFrames) ||
        root["op"].toDouble() < root["ip"].toDouble() + 1)
        return "no usable length";
    if (!isWithin(root["w"], 1, maxSide) || !isWithin(root["h"], 1, maxSide))
        return "no usable size";
    if (root["layers"].toArray().isEmpty())
        return "no layers";
    const QJsonArray assets = root["assets"].toArray();
    for (const QJsonValue &asset : assets) {
        if (!asset["layers"].isArray())
            return "it wants pictures from other files";
    }
    if (!isBounded(root))
        return "a number beyond all bounds";
    return {};
}

} // namespace kel
