// Runs a fuzz target without libFuzzer: mutates each of the given files a number of times. The mutations are the same
// in every run, so crashes are reproducible; the last line printed names the file and the round.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <random>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace
{

constexpr unsigned kRounds = 2000;

std::vector<std::uint8_t> mutated(std::vector<std::uint8_t> bytes, unsigned round)
{
    std::mt19937 random(round);
    const auto below = [&](std::size_t limit) { return random() % std::max<std::size_t>(limit, 1); };
    for (std::size_t changes = 1 + below(8); changes-- > 0 && !bytes.empty();) {
        // Most of what affects a reader is near the ends of a file.
        const std::size_t window = below(3) ? std::min<std::size_t>(bytes.size(), 1500) : bytes.size();
        const std::size_t at = below(2) ? below(window) : bytes.size() - 1 - below(window);
        switch (below(4)) {
        case 0:
            bytes[at] ^= std::uint8_t(1U << below(8));
            break;
        case 1:
            bytes[at] = below(2) ? 0xff : 0;
            break;
        case 2:
            std::fill_n(bytes.begin() + std::ptrdiff_t(at), std::min<std::size_t>(4, bytes.size() - at),
                        std::uint8_t(random()));
            break;
        default:
            if (below(4) == 0)
                bytes.resize(at);
        }
    }
    return bytes;
}

} // namespace

int main(int argc, char **argv)
{
    for (int i = 1; i < argc; ++i) {
        std::ifstream file(argv[i], std::ios::binary);
        const std::vector<std::uint8_t> seed{std::istreambuf_iterator<char>(file), {}};
        for (unsigned round = 0; round < kRounds; ++round) {
            std::printf("\r%s %u", argv[i], round);
            std::fflush(stdout);
            const std::vector<std::uint8_t> input = mutated(seed, round);
            LLVMFuzzerTestOneInput(input.data(), input.size());
        }
    }
    std::printf("\n");
    return 0;
}
