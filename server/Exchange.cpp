#include <server/Exchange.h>

namespace Corvane::Server {

Request Request::of(const QByteArray& target)
{
    const int mark = target.indexOf('?');
    Request request;
    const QByteArray path = QByteArray::fromPercentEncoding(mark < 0 ? target : target.left(mark));
    if (!path.contains('\0')) { // the text would end there, and stand for something else
        request.path = QString::fromUtf8(path);
    }
    request.query = QUrlQuery(mark < 0 ? QString() : QString::fromUtf8(target.mid(mark + 1)));
    return request;
}

QString Request::item(const char* name) const
{
    const QString key = QString::fromLatin1(name);
    return query.hasQueryItem(key) ? query.queryItemValue(key, QUrl::FullyDecoded) : QString();
}

Reply Reply::data(const QByteArray& body, const char* type)
{
    Reply reply;
    reply.type = type;
    reply.body = body;
    return reply;
}

Reply Reply::failure(int status, const QString& text)
{
    Reply reply = data(text.toUtf8() + '\n', "text/plain; charset=utf-8");
    reply.status = status;
    return reply;
}

Reply& Reply::header(const char* name, const QByteArray& value)
{
    headers.emplace_back(name, value);
    return *this;
}

QByteArray Reply::header(const char* name) const
{
    for (const auto& [key, value] : headers) {
        if (qstricmp(key.constData(), name) == 0) {
            return value;
        }
    }
    return QByteArray();
}

} // namespace Corvane::Server
