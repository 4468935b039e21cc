#include "console/WholeFile.h"

#include <windows.h>

#include "base/Hresult.h"
#include "console/Failure.h"
#include "console/Text.h"

namespace tsl {

CWholeFile::CWholeFile(const std::string& path) : m_path(ToUtf16(path)), m_made(m_path) {
    m_made += L".new";
    m_stream.open(m_made, std::ios::binary);
    if (!m_stream) throw CFailure("cannot write", m_path.wstring(), HresultFromLastError());
}

CWholeFile::~CWholeFile() {
    m_stream.close();
    std::error_code ignored;
    std::filesystem::remove(m_made, ignored);
}

void CWholeFile::Commit() {
    m_stream.close();
    if (m_stream && MoveFileExW(m_made.c_str(), m_path.c_str(), MOVEFILE_REPLACE_EXISTING)) return;
    throw CFailure(ExitCode::Denied, "cannot write " + ToUtf8(m_path.wstring()));
}

} // namespace tsl
