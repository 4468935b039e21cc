// Memory that the C++ runtime can throw with when the process has none left: without it the runtime
// ends the host's process instead of throwing. The linker leads every malloc, calloc, realloc and
// free of the module here; operator new goes past it, so that the reserve is kept for the runtime.
#include <windows.h>

#include <atomic>
#include <cstddef>
#include <cstring>
#include <new>

extern "C" {
void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __real_realloc(void* block, std::size_t size);
void __real_free(void* block);
void* __wrap_malloc(std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size);
void* __wrap_realloc(void* block, std::size_t size);
void __wrap_free(void* block);
}

namespace {

// An exception, or what the runtime keeps for a thread, fits into one.
constexpr std::size_t kPieceSize = 1024;
constexpr std::size_t kPieces = 64;

struct alignas(16) Piece {
    std::byte bytes[kPieceSize];
};
Piece g_pieces[kPieces];
std::atomic<bool> g_taken[kPieces];

bool IsPiece(const void* block) noexcept {
    return block >= g_pieces && block < g_pieces + kPieces;
}

void* TakePiece(std::size_t size) noexcept {
    for (std::size_t index = 0; size <= kPieceSize && index < kPieces; ++index) {
        if (!g_taken[index].exchange(true)) return &g_pieces[index];
    }
    return nullptr;
}

} // namespace

void* __wrap_malloc(std::size_t size) {
    void* const block = __real_malloc(size);
    return block ? block : TakePiece(size);
}

void* __wrap_calloc(std::size_t count, std::size_t size) {
    void* const block = __real_calloc(count, size);
    if (block || (size != 0 && count > kPieceSize / size)) return block;
    void* const piece = TakePiece(count * size);
    if (piece) std::memset(piece, 0, kPieceSize);
    return piece;
}

void* __wrap_realloc(void* block, std::size_t size) {
    if (block && !IsPiece(block)) return __real_realloc(block, size);
    if (block && size == 0) {
        __wrap_free(block);
        return nullptr;
    }
    if (block && size <= kPieceSize) return block;
    void* const larger = __wrap_malloc(size);
    if (larger && block) std::memcpy(larger, block, kPieceSize);
    if (larger) __wrap_free(block);
    return larger;
}

void __wrap_free(void* block) {
    if (!IsPiece(block)) return __real_free(block);
    g_taken[static_cast<Piece*>(block) - g_pieces] = false;
}

#ifndef TSL_GUARDED_HEAP
void* operator new(std::size_t size) {
    void* const block = __real_malloc(size != 0 ? size : 1);
    if (!block) throw std::bad_alloc();
    return block;
}
void operator delete(void* block) noexcept {
    // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDelete): this is the operator that frees it
    __real_free(block);
}
void operator delete(void* block, std::size_t) noexcept {
    __real_free(block);
}
#endif
