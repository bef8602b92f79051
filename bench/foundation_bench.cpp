// Foundation hot paths: comparing titles ignoring case, counting the
// characters of a lyric line, and loading the two biggest files the library
// reads (a song library index and a large UTF-16 XML document). The files are
// generated into a temporary folder that is removed when the program ends.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

#include "melodex/foundation/file_system.h"
#include "melodex/foundation/ini_file.h"
#include "melodex/foundation/text.h"
#include "melodex/foundation/text_encoding.h"
#include "melodex/foundation/xml.h"

namespace {

using namespace melodex;

class BenchFolder {
public:
    BenchFolder() {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "melodex-bench-XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
        m_path = pattern;
    }
    BenchFolder(const BenchFolder&) = delete;
    BenchFolder& operator=(const BenchFolder&) = delete;
    ~BenchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    String file(std::string_view name) const { return joinPath(m_path, name); }

private:
    String m_path;
};

const BenchFolder& benchFolder() {
    static const BenchFolder folder;
    return folder;
}

// A song library index as the library writes it: 10,000 sections of twelve
// values each.
const String& indexFile() {
    static const String path = [] {
        IniFile index;
        for (int i = 0; i < 10000; ++i) {
            char uuid[40];
            std::snprintf(uuid, sizeof uuid, "%08x-1d2c-4b3a-9f8e-%012d", i * 2654435761u, i);
            ConfigKey* key = index.createKey(uuid);
            const String n = std::to_string(i);
            key->setString("filename", "Song number " + n + ".song");
            key->setString("uuid", uuid);
            key->setString("updated", "20240131174502");
            key->setString("title", "Amazing Grace (version " + n + ")");
            key->setString("author", "John Newton");
            key->setString("key", "G");
            key->setString("tempo", "72");
            key->setString("timesignature", "3/4");
            key->setString("firstline", "Amazing grace, how sweet the sound that saved");
            key->setString("index1", "Grâce infinie " + n);
            key->setString("index2", "How sweet the sound");
            key->setString("category1", "Hymns");
        }
        const String file = benchFolder().file("songdb-bench.ini");
        if (index.save(file) != StatusSuccess) throw std::runtime_error("cannot write index");
        return file;
    }();
    return path;
}

// A song-like XML document of about 4 MB in UTF-16 with a byte-order mark.
const String& xmlFile() {
    static const String path = [] {
        String text =
            "<?xml version=\"1.0\" encoding=\"UTF-16\"?>\n<song version=\"1.0\">\n"
            "<info><title>Amazing Grace</title><author>John Newton</author></info>\n";
        while (text.size() < 2'000'000) {
            text += "<section type=\"verse\" singer=\"all\">\n";
            for (int line = 0; line < 4; ++line) {
                text +=
                    "  <line>A<chord name=\"G\"/>mazing grace, how <chord name=\"D7\"/>sweet "
                    "the sound, Jésus &amp; « chœur »</line>\n";
            }
            text += "</section>\n";
        }
        text += "</song>\n";
        const String file = benchFolder().file("song-bench.xml");
        if (writeFileAtomically(file, encodeUtf16LE(text, true)) != StatusSuccess) {
            throw std::runtime_error("cannot write XML");
        }
        return file;
    }();
    return path;
}

void BM_EqualsIgnoreCaseAscii(benchmark::State& state) {
    const String a = "Amazing Grace How Sweet Sounds";
    const String b = "AMAZING grace how SWEET sounds";
    for (auto _ : state)
        benchmark::DoNotOptimize(equalsIgnoreCase(a, b));
}
BENCHMARK(BM_EqualsIgnoreCaseAscii);

void BM_EqualsIgnoreCaseAccented(benchmark::State& state) {
    const String a = "À Toi la gloire, Ô Ressuscité!";
    const String b = "à toi LA GLOIRE, ô ressuscité!";
    for (auto _ : state)
        benchmark::DoNotOptimize(equalsIgnoreCase(a, b));
}
BENCHMARK(BM_EqualsIgnoreCaseAccented);

void BM_CodePointLength(benchmark::State& state) {
    const String line = "Je louerai l'Éternel de tout mon cœur, je dirai Tes œuvres !";
    for (auto _ : state)
        benchmark::DoNotOptimize(codePointLength(line));
}
BENCHMARK(BM_CodePointLength);

void BM_LoadIniIndex(benchmark::State& state) {
    const String& path = indexFile();
    for (auto _ : state) {
        IniFile index;
        if (index.load(path) != StatusSuccess) state.SkipWithError("load failed");
        benchmark::DoNotOptimize(index.getKeyCount());
    }
}
BENCHMARK(BM_LoadIniIndex)->Unit(benchmark::kMillisecond);

void BM_LoadUtf16Xml(benchmark::State& state) {
    const String& path = xmlFile();
    for (auto _ : state) {
        XmlFile file;
        if (file.load(path) != StatusSuccess) state.SkipWithError("load failed");
        benchmark::DoNotOptimize(file.root());
    }
}
BENCHMARK(BM_LoadUtf16Xml)->Unit(benchmark::kMillisecond);

}  // namespace
