#include "packages/incoming_file.h"

#include "packages/path_safety.h"

namespace quillmar
{

using namespace Qt::StringLiterals;

IncomingFile::IncomingFile(const QString &folder) : folder_(folder) {}

void IncomingFile::setName(const QString &name)
{
    if (!isSafeFileName(name))
        return;
    path_ = folder_ + u'/' + name;
    file_.emplace(folder_, path_);
}

void IncomingFile::append(QByteArrayView bytes)
{
    if (!file_)
        return;
    if (!isOpen_) {
        isOpen_ = true;
        file_->open();
    }
    file_->write(bytes);
}

ProductFileResult IncomingFile::store()
{
    if (!file_ || !file_->commit())
        return ProductFileResult::failure(u"Download.SaveFailed"_s);
    return ProductFileResult::success(path_);
}

} // namespace quillmar
