#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

// Runs a fuzzing target over every file of a folder and over changed copies of them, always the same ones:
//
//     fuzz-report SEED_FOLDER COPIES
//
// A target ends the program when it finds a fault; the input is then in the file "fuzz-input" of this folder.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using Bytes = std::string;

std::vector<Bytes> seedsIn(const char* folder)
{
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    std::vector<Bytes> seeds;
    for (const auto& file : files) {
        std::ifstream stream(file, std::ios::binary);
        seeds.emplace_back(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
    }
    return seeds;
}

// A seed with a few bytes changed, a stretch removed, doubled or taken from elsewhere.
class Changer {
public:
    explicit Changer(const std::vector<Bytes>& seeds)
        : m_seeds(seeds)
    {
    }

    Bytes changed()
    {
        auto bytes = anySeed();
        for (auto changes = 1 + below(4); changes > 0 && !bytes.empty(); --changes)
            change(bytes);
        return bytes;
    }

private:
    std::size_t below(std::size_t limit) { return limit == 0 ? 0 : m_random() % limit; }
    const Bytes& anySeed() { return m_seeds[below(m_seeds.size())]; }

    void change(Bytes& bytes)
    {
        const auto at = below(bytes.size()), length = below(std::min<std::size_t>(bytes.size() - at, 64)) + 1;
        switch (below(5)) {
        case 0:
            bytes[at] = static_cast<char>(below(256));
            break;
        case 1:
            bytes.erase(at, length);
            break;
        case 2:
            bytes.insert(at, bytes.substr(at, length));
            break;
        case 3:
            bytes[at] = "0123456789-+.eE<>\"'/&;{}[]:, "[below(29)];
            break;
        default:
            const auto& other = anySeed();
            bytes.insert(at, other, below(other.size()), length);
        }
    }

    const std::vector<Bytes>& m_seeds;
    std::mt19937 m_random { 20260309 };
};

void run(const Bytes& input)
{
    std::ofstream("fuzz-input", std::ios::binary) << input;
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
}

} // namespace

int main(int argumentCount, char** arguments)
{
    const auto seeds = argumentCount == 3 ? seedsIn(arguments[1]) : std::vector<Bytes>();
    if (seeds.empty()) {
        std::fputs("SEED_FOLDER COPIES, with at least one seed in the folder\n", stderr);
        return 2;
    }
    for (const auto& seed : seeds)
        run(seed);
    Changer changer(seeds);
    for (int copies = std::atoi(arguments[2]); copies > 0; --copies)
        run(changer.changed());
    std::filesystem::remove("fuzz-input");
}
