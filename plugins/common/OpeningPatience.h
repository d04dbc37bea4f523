#pragma once

namespace Corvane::Map {

/// How long the GUI thread waits for a source that opens on the pool, so that small files are there
/// at once: for each one that is opened by itself, but once for all layers of a document together.
/// GUI thread only.
class OpeningPatience
{
public:
    /// While it lives, what is opened belongs to a document.
    class Document
    {
    public:
        Document();
        ~Document();
        Document(const Document&) = delete;
        Document& operator=(const Document&) = delete;
    };

    /// Measures one wait, from its construction to its end.
    OpeningPatience();
    ~OpeningPatience();
    OpeningPatience(const OpeningPatience&) = delete;
    OpeningPatience& operator=(const OpeningPatience&) = delete;

    /// Milliseconds that this wait may take.
    int left() const;

private:
    long long start;
};

} // namespace Corvane::Map
