#include "simulation/mac/security/OpenSslCryptography.hpp"

#include "foundation/Fatal.hpp"

#include <openssl/evp.h>

#include <limits>

namespace sentrel::simulation {

namespace {

constexpr std::int32_t cryptoSuccess = 0;
constexpr std::int32_t cryptoParameterError = -4300;   // kCCParamError
constexpr std::int32_t cryptoUnspecifiedError = -4308; // kCCUnspecifiedError

constexpr std::uint32_t algorithmPbkdf2 = 2;
constexpr std::uint32_t pseudoRandomFunctionHmacSha256 = 3;

/// Largest size that the library's int parameters take.
constexpr std::size_t most = std::numeric_limits<int>::max();

/// A pointer that isn't null, even for no bytes.
const std::uint8_t* pointerTo(BytesView bytes)
{
    static constexpr std::uint8_t nothing = 0;
    return bytes.empty() ? &nothing : bytes.data();
}

void require(bool succeeded)
{
    if (!succeeded) {
        fatalError("the library refuses to compute SHA-256");
    }
}

class OpenSslSha256 final : public ports::Sha256Context {
public:
    explicit OpenSslSha256(std::shared_ptr<EVP_MD> sha256) : sha256_(std::move(sha256)), context_(EVP_MD_CTX_new())
    {
        require(context_ != nullptr && EVP_DigestInit_ex2(context_.get(), sha256_.get(), nullptr) == 1);
    }

    void update(BytesView bytes) override
    {
        require(EVP_DigestUpdate(context_.get(), bytes.data(), bytes.size()) == 1);
    }

    void finish(ports::Sha256Digest digest) override
    {
        require(EVP_DigestFinal_ex(context_.get(), digest.data(), nullptr) == 1);
        require(EVP_DigestInit_ex2(context_.get(), nullptr, nullptr) == 1);
    }

private:
    struct Deleter {
        // Wipes the state too.
        void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
    };
    std::shared_ptr<EVP_MD> sha256_;
    std::unique_ptr<EVP_MD_CTX, Deleter> context_;
};

} // namespace

OpenSslCryptography::OpenSslCryptography() : sha256_(EVP_MD_fetch(nullptr, "SHA256", nullptr), &EVP_MD_free)
{
    require(sha256_ != nullptr);
}

std::int32_t OpenSslCryptography::deriveKey(std::uint32_t algorithm, BytesView password, BytesView salt,
                                            std::uint32_t pseudoRandomFunction, std::uint32_t rounds,
                                            std::span<std::uint8_t> key)
{
    faults_.call("deriveKey");
    if (algorithm != algorithmPbkdf2 || pseudoRandomFunction != pseudoRandomFunctionHmacSha256 || rounds == 0 ||
        rounds > most || key.empty() || key.size() > most || password.size() > most || salt.size() > most) {
        return cryptoParameterError;
    }
    const int derived =
        PKCS5_PBKDF2_HMAC(reinterpret_cast<const char*>(pointerTo(password)), static_cast<int>(password.size()),
                          pointerTo(salt), static_cast<int>(salt.size()), static_cast<int>(rounds), sha256_.get(),
                          static_cast<int>(key.size()), key.data());
    return derived == 1 ? cryptoSuccess : cryptoUnspecifiedError;
}

std::unique_ptr<ports::Sha256Context> OpenSslCryptography::makeSha256Context()
{
    faults_.call("makeSha256Context");
    return std::make_unique<OpenSslSha256>(sha256_);
}

} // namespace sentrel::simulation
