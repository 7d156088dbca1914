#pragma once

// Shared by the fuzz targets: a failed property prints what was checked and the input, then aborts,
// which libFuzzer reports as a crash and saves the input as crash-<sha1>.

#include <QApplication>
#include <QByteArray>
#include <QString>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace fuzz {

[[noreturn]] inline void fail(const char* condition, const char* file, int line, const QString& context)
{
    std::fprintf(stderr, "%s:%d: property failed: %s\n  %s\n", file, line, condition, context.toUtf8().constData());
    std::abort();
}

// The input after its selector bytes, as the text a user could type or paste. Invalid UTF-8 becomes
// U+FFFD, as it would from a clipboard.
inline QString text(const uint8_t* data, size_t size)
{
    return QString::fromUtf8(reinterpret_cast<const char*>(data), int(size));
}

// A selector byte of the input, read so that the seed files can spell it as a printable digit:
// '0' selects 0, '1' selects 1, and every other byte one of the \a count choices too.
inline int choice(uint8_t byte, int count)
{
    return (int(byte) - '0' + 256 * count) % count;
}

inline bool sameNumber(double a, double b)
{
    return std::memcmp(&a, &b, sizeof a) == 0 || a == b;
}

// The widget targets need an application; an offscreen one, made once for the whole run.
inline void makeApplication(int* argc, char*** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_LOGGING_RULES", "vandrel.*=false;qt.*=false");
    static QApplication application(*argc, *argv);
}

} // namespace fuzz

#define FUZZ_CHECK(condition, context)                                                                 \
    do {                                                                                               \
        if (!(condition))                                                                              \
            ::fuzz::fail(#condition, __FILE__, __LINE__, (context));                                   \
    } while (false)
