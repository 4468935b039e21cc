#include "console/WholeFile.h"

#include "console/Failure.h"
#include "console/Text.h"

namespace tsl {

CWholeFile::CBuffer::CBuffer(const CNewFile& file) : m_file(file) {
    setp(m_bytes.data(), m_bytes.data() + m_bytes.size());
}

int CWholeFile::CBuffer::sync() {
    const auto size = static_cast<size_t>(pptr() - pbase());
    setp(m_bytes.data(), m_bytes.data() + m_bytes.size());
    m_file.Write(m_bytes.data(), size);
    return 0;
}

CWholeFile::CBuffer::int_type CWholeFile::CBuffer::overflow(int_type character) {
    sync();
    return traits_type::eq_int_type(character, traits_type::eof())
               ? traits_type::not_eof(character)
               : sputc(traits_type::to_char_type(character));
}

CWholeFile::CWholeFile(const std::string& path)
    : m_file(ToUtf16(path)), m_buffer(m_file), m_stream(&m_buffer) {
    // A failure to write is told as it is.
    m_stream.exceptions(std::ios::badbit);
}

void CWholeFile::Commit() {
    m_stream.flush();
    m_file.Move();
    m_file.Keep();
}

} // namespace tsl
