#pragma once

#include "tests/host/support/host_session.h"

#include <QString>

#include <functional>

namespace quillmar::demo
{

/// The stop of the tour at which a stinger is added to OBS and scenes are switched through it.
class StingerStop
{
public:
    /// Takes the same picture in both languages, of what has come to rest; ends in English.
    using Photograph = std::function<bool(const QString &name, const test::ComponentButton &outcome)>;
    /// Puts a picture that has been taken already, a PNG, to the others; English comes first.
    using Keep = std::function<bool(const QString &language, const QString &name, const QString &file)>;

    StingerStop(test::HostSession &session, Photograph photograph, Keep keep)
        : session_(session), photograph_(std::move(photograph)), keep_(std::move(keep))
    {
    }

    /// Expects the panel in English, with somebody signed in, and leaves it so, with the scene and the
    /// transition of before. False, with the reason in problem(), when something was not as it should be.
    bool visit();

    const QString &problem() const { return problem_; }
    /// What was added, in one sentence, once visit() has succeeded.
    QString report() const;

private:
    bool add();
    bool showIn(const QString &language);
    bool catchTheMiddle(const QString &scene, const QString &file);
    QString otherScene() const;
    bool fail(const QString &problem);

    test::HostSession &session_;
    Photograph photograph_;
    Keep keep_;
    QString problem_;
};

} // namespace quillmar::demo
