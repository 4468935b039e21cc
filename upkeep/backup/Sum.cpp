#include "upkeep/backup/Sum.h"

#include <bcrypt.h>

#include <array>
#include <memory>
#include <type_traits>

#include "base/Hresult.h"
#include "base/SystemLibrary.h"
#include "console/Failure.h"
#include "console/Text.h"
#include "upkeep/CheckedFiles.h"
#include "upkeep/StoreFiles.h"

namespace tsl {

namespace {

void RequireDone(NTSTATUS status) {
    if (status < 0) {
        throw CFailure(ExitCode::Denied, "the system gives no SHA-256 sums: " +
                                             DescribeResult(HRESULT_FROM_NT(status)));
    }
}

// Not linked: a file of that name may lie beside the program.
template <class Function>
Function FindFunction(const char* name) {
    static const CSystemLibrary library(L"bcrypt.dll");
    const auto found = library ? library.Find<Function>(name) : nullptr;
    if (found) return found;
    throw CFailure(ExitCode::Denied,
                   std::string("the system gives no SHA-256 sums: bcrypt.dll has no ") + name);
}

struct HashFunctions {
    decltype(&BCryptOpenAlgorithmProvider) openProvider =
        FindFunction<decltype(openProvider)>("BCryptOpenAlgorithmProvider");
    decltype(&BCryptCloseAlgorithmProvider) closeProvider =
        FindFunction<decltype(closeProvider)>("BCryptCloseAlgorithmProvider");
    decltype(&BCryptCreateHash) createHash = FindFunction<decltype(createHash)>("BCryptCreateHash");
    decltype(&BCryptDestroyHash) destroyHash =
        FindFunction<decltype(destroyHash)>("BCryptDestroyHash");
    decltype(&BCryptHashData) hashData = FindFunction<decltype(hashData)>("BCryptHashData");
    decltype(&BCryptFinishHash) finishHash = FindFunction<decltype(finishHash)>("BCryptFinishHash");
};

const HashFunctions& Functions() {
    static const HashFunctions functions;
    return functions;
}

struct ProviderDeleter {
    void operator()(void* provider) const noexcept { Functions().closeProvider(provider, 0); }
};
struct HashDeleter {
    void operator()(void* hash) const noexcept { Functions().destroyHash(hash); }
};

// A sum that grows with what is added.
class CSha256 {
public:
    CSha256() {
        void* made = nullptr;
        RequireDone(Functions().openProvider(&made, BCRYPT_SHA256_ALGORITHM,
                                             /*implementation=*/nullptr, /*flags=*/0));
        m_provider.reset(made);
        RequireDone(Functions().createHash(made, &made, /*hashObject=*/nullptr, 0,
                                           /*secret=*/nullptr, 0,
                                           /*flags=*/0));
        m_hash.reset(made);
    }

    void Add(const void* bytes, size_t size) {
        auto* const first = static_cast<UCHAR*>(const_cast<void*>(bytes)); // is not written
        RequireDone(
            Functions().hashData(m_hash.get(), first, static_cast<ULONG>(size), /*flags=*/0));
    }

    // Ends the sum.
    std::string Hexadecimal() {
        std::array<UCHAR, 32> sum{};
        RequireDone(Functions().finishHash(m_hash.get(), sum.data(), sum.size(), /*flags=*/0));
        std::string text;
        for (const UCHAR byte : sum) {
            text += "0123456789abcdef"[byte >> 4];
            text += "0123456789abcdef"[byte & 0xF];
        }
        return text;
    }

private:
    std::unique_ptr<void, ProviderDeleter> m_provider;
    std::unique_ptr<void, HashDeleter> m_hash;
};

// Hands the blocks of a file to take and sums them.
template <class Take>
FileSum SumBlocks(const CHandle& file, const std::wstring& path, const char* doing,
                  const Progress& progress, const Take& take) {
    LARGE_INTEGER whole{};
    GetFileSizeEx(file.Get(), &whole);
    const std::string what = doing + ToUtf8(NameOf(path));
    CSha256 sum;
    FileSum result;
    ReadBlocks(file, path, [&](const void* block, DWORD size) {
        sum.Add(block, size);
        take(block, size);
        result.size += size;
        progress(what, result.size, static_cast<UINT64>(whole.QuadPart));
    });
    result.sha256 = sum.Hexadecimal();
    return result;
}

} // namespace

std::string Sha256Of(std::string_view bytes) {
    CSha256 sum;
    sum.Add(bytes.data(), bytes.size());
    return sum.Hexadecimal();
}

CHandle OpenUnchanging(const std::wstring& path) {
    CHandle file(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ,
                             /*securityAttributes=*/nullptr, OPEN_EXISTING,
                             FILE_FLAG_SEQUENTIAL_SCAN, /*templateFile=*/nullptr));
    if (!file) throw CFailure("cannot read", path, HresultFromLastError());
    return file;
}

FileSum SumOfFile(const std::wstring& path, const Progress& progress) {
    return SumOf(OpenUnchanging(path), path, progress);
}

FileSum SumOf(const CHandle& file, const std::wstring& path, const Progress& progress) {
    return SumBlocks(file, path, "summing ", progress, [](const void*, DWORD) {});
}

FileSum CopyAndSum(const CHandle& file, const std::wstring& path, const CHandle& copy,
                   const Progress& progress) {
    const auto require = [&](bool done) {
        if (!done) throw CFailure("cannot write a copy of", path, HresultFromLastError());
    };
    const FileSum sum =
        SumBlocks(file, path, "copying ", progress, [&](const void* block, DWORD size) {
            DWORD written = 0;
            require(WriteFile(copy.Get(), block, size, &written, /*overlapped=*/nullptr) != 0);
        });
    require(FlushFileBuffers(copy.Get()) != 0);
    return sum;
}

} // namespace tsl
