// A file that is written whole or not at all: what was there before stays until then.
#pragma once

#include <array>
#include <ostream>
#include <streambuf>
#include <string>

#include "console/NewFile.h"

namespace tsl {

class CWholeFile {
public:
    // Throws CFailure when it cannot be made.
    explicit CWholeFile(const std::string& path);

    // Goes bad when something cannot be written.
    std::ostream& Stream() { return m_stream; }

    // Puts it in its place, over what is there: a link that lies there is replaced, not followed.
    // Throws CFailure when something of it could not be written; without Commit nothing is left.
    void Commit();

private:
    // What is written to a stream, on its way to the file.
    class CBuffer : public std::streambuf {
    public:
        explicit CBuffer(const CNewFile& file);

    private:
        int sync() override;
        int_type overflow(int_type character) override;

        const CNewFile& m_file;
        std::array<char, 1 << 16> m_bytes;
    };

    CNewFile m_file;
    CBuffer m_buffer;
    std::ostream m_stream;
};

} // namespace tsl
