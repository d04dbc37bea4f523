#pragma once

namespace Corvane::Server {

class ImageFolder;
struct Reply;
struct Request;

/// Answers searches of the catalog, in JSON. Any thread.
class SearchInterface
{
public:
    /// Not owned; outlives it.
    explicit SearchInterface(ImageFolder& images);

    /// The body of the request is a JSON object; its page and the formats that it names are kept to.
    Reply answer(const Request& request) const;

private:
    ImageFolder& images;
};

} // namespace Corvane::Server
