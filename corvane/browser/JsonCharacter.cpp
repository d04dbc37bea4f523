#include <corvane/browser/JsonReader_p.h>

namespace JsonReader {

// The decimal value of a digit and -1 for all else: none of these is the code of a mark, so the reader
// knows its three words alone and a catalog's reply leaves the tree as it is.
// JsonReaderTest::nothingButTheThreeWordsIsRead holds it.
signed char codeOf(QChar character)
{
    return static_cast<signed char>(character.digitValue());
}

} // namespace JsonReader
