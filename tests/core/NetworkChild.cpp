// Prints what the URL given gives.

#include <tests/support/Fetching.h>

#include <cstdio>

int main(int count, char** arguments)
{
    if (count != 2) {
        return 2;
    }
    const QByteArray bytes = bytesOf(QString::fromUtf8(arguments[1]));
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stdout);
    return 0;
}
