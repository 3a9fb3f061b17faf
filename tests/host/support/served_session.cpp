#include "tests/host/support/served_session.h"

namespace quillmar::test
{

using namespace Qt::StringLiterals;

std::unique_ptr<ServedSession> ServedSession::start(const ServedSettings &settings, QString *problem)
{
    std::unique_ptr<ServedSession> served(new ServedSession(settings));
    if (!served->catalogue_.isValid()) {
        *problem = u"the catalogue of the host tests cannot be made"_s;
        return nullptr;
    }
    if (!served->startService(problem))
        return nullptr;
    served->session_ = HostSession::start(settings.host, problem);
    if (!served->session_)
        return nullptr;
    if (settings.account.isEmpty() || served->enter(settings.account))
        return served;
    *problem = served->panel().problem();
    return nullptr;
}

bool ServedSession::startService(QString *problem)
{
    service_.reset();
    service_ = ServiceProcess::start(catalogue_.path(), settings_.giantBytes, problem);
    return service_ != nullptr;
}

bool ServedSession::resume(QString *problem)
{
    if (!session_->startObs(problem))
        return false;
    panel().assumeLanguage(u"en-US"_s);
    if (panel().waitForHome())
        return true;
    *problem = panel().problem();
    return false;
}

bool ServedSession::enter(const QString &account)
{
    return panel().setLanguage(u"en-US"_s) && panel().enter(account, account);
}

} // namespace quillmar::test
