#pragma once

class QString;

namespace Corvane::Server {

class ImageFolder;
class Pictures;
struct PublishedImage;
struct Reply;
struct Request;

/// Answers with small pictures and details of whole images. Any thread.
class ImageInterface
{
public:
    /// Neither is owned; both outlive it.
    ImageInterface(ImageFolder& images, Pictures& pictures);

    /// what is "image" or "dsinfo"; other words get a failure.
    Reply answer(const QString& what, const Request& request) const;

private:
    Reply picture(const PublishedImage& image, const Request& request) const;
    Reply details(const PublishedImage& image) const;

    ImageFolder& images;
    Pictures& pictures;
};

} // namespace Corvane::Server
