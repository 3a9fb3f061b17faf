#include "demo/service/answer.h"

using namespace Qt::StringLiterals;

namespace quillmar::demo
{

Answer refusal(int status, const QString &code, const QString &message)
{
    Answer answer;
    answer.status = status;
    answer.json = {{u"code"_s, code}, {u"message"_s, message}};
    answer.reason = code;
    return answer;
}

} // namespace quillmar::demo
