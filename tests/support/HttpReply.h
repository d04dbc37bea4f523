#pragma once

#include <QByteArray>

#include <string>
#include <utility>
#include <vector>

/// What HttpTestServer answers to a request. Texts are std::string, which threads do not share.
struct HttpReply
{
    static HttpReply data(const QByteArray& body,
                          const char* contentType = "application/octet-stream");
    static HttpReply withStatus(int status, const QByteArray& body = QByteArray());
    static HttpReply redirect(const QByteArray& target, int status = 302);
    /// These bytes in place of head and body; then the connection is closed.
    static HttpReply raw(const QByteArray& bytes);
    /// The piece again and again until the client goes.
    static HttpReply endless(const QByteArray& piece);
    /// A reset connection in place of an answer.
    static HttpReply reset();

    HttpReply& header(const char* name, const QByteArray& value);
    /// Packs the body and says so.
    HttpReply& gzipped();
    /// In chunks of so many bytes, without a length.
    HttpReply& chunked(int chunkBytes);
    /// Closes the connection after so many bytes of the body; the head promises all of them.
    HttpReply& cutAfter(int bodyBytes);
    /// Waits for HttpTestServer::release, before the head.
    HttpReply& held();
    /// Waits for HttpTestServer::release, after the head and so many bytes of the body.
    HttpReply& heldAfter(int bodyBytes);

    enum class Form
    {
        Plain,
        Chunked,
        Raw,
        Endless,
        Reset
    };

    static constexpr int never = -1;

    int status = 200;
    std::vector<std::pair<std::string, std::string>> headers;
    std::string body;
    Form form = Form::Plain;
    std::size_t chunkSize = 0; // bytes
    int cutAt = never;         // bytes of the body
    int holdAt = never;        // bytes of the body
    bool holdBeforeHead = false;
};
