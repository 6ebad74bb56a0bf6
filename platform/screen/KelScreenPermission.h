#pragma once

#include <QString>

#include <functional>

/// The answer to the request for permission to capture the screen.
struct KelScreenPermission {
    enum class Answer {
        Granted,
        Declined, ///< by a person
        Failed    ///< nobody could be asked, or the system could not do what was granted
    };

    Answer answer = Answer::Granted;
    QString reason; ///< an English sentence; empty when granted
};

/// A request for permission to capture and, once granted, the permission. Its deletion withdraws the request, without
/// an answer, or gives up the permission; what was created with the permission keeps working. GUI thread.
class KelScreenPreparation
{
public:
    using Done = std::function<void(const KelScreenPermission &)>;

    virtual ~KelScreenPreparation() = default;
};
