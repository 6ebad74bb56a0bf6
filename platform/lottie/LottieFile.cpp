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

constexpr double kMaxRate = 1000;
constexpr double kMaxFrames = 1e6;
constexpr double kMaxSide = 16384;
constexpr double kMaxNumber = 1e6;

bool isWithin(const QJsonValue &value, double low, double high)
{
    return value.isDouble() && value.toDouble() >= low && value.toDouble() <= high;
}

/// The renderer evaluates curves with any number that the file contains, which could take hours.
bool isBounded(const QJsonValue &value)
{
    if (value.isDouble())
        return isWithin(value, -kMaxNumber, kMaxNumber);
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
    m_data = file.read(maxSize + 1); // the reported size may be wrong
    if (m_data.size() > maxSize)
        return QStringLiteral("larger than %1 bytes").arg(maxSize);
    return {};
}

QString LottieFile::check() const
{
    QJsonParseError syntax;
    const QJsonDocument document = QJsonDocument::fromJson(m_data, &syntax);
    if (syntax.error != QJsonParseError::NoError)
        return syntax.errorString();
    const QJsonObject root = document.object();
    if (!isWithin(root[QLatin1String("fr")], 0.01, kMaxRate))
        return QStringLiteral("the frame rate is invalid");
    if (!isWithin(root[QLatin1String("ip")], 0, kMaxFrames) || !isWithin(root[QLatin1String("op")], 0, kMaxFrames) ||
        root[QLatin1String("op")].toDouble() < root[QLatin1String("ip")].toDouble() + 1)
        return QStringLiteral("the length is invalid");
    if (!isWithin(root[QLatin1String("w")], 1, kMaxSide) || !isWithin(root[QLatin1String("h")], 1, kMaxSide))
        return QStringLiteral("the size is invalid");
    if (root[QLatin1String("layers")].toArray().isEmpty())
        return QStringLiteral("it has no layers");
    const QJsonArray assets = root[QLatin1String("assets")].toArray();
    for (const QJsonValue &asset : assets) {
        if (!asset[QLatin1String("layers")].isArray())
            return QStringLiteral("it needs images from other files");
    }
    if (!isBounded(root))
        return QStringLiteral("a number is out of range");
    return {};
}

} // namespace kel
