// SPDX-License-Identifier: MIT
// The base library alone, without Qt: files every text of a directory anew, in the encoding GBK.
//   example-base DIRECTORY
#include <code_convert.h>
#include <cstdio>
#include <myfs.h>
#include <vector>

namespace
{

std::string readAll(const myfs::path& file)
{
    std::string text(static_cast<std::size_t>(myfs::file_size(file, false)), '\0');
    myfs::filestream stream;
    if (stream.open(file, 0x80000000, false)) // to read only
        text.resize(stream.read(&text[0], text.size()));
    return text;
}

bool write(const myfs::path& file, const std::string& text)
{
    myfs::filestream stream;
    return stream.open(file, 0, true) && stream.write(text.data(), text.size()) == text.size();
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2 || !myfs::directory_exists(argv[1])) {
        std::fprintf(stderr, "usage: example-base DIRECTORY\n");
        return 2;
    }
    const myfs::path directory(argv[1]);
    const myfs::path converted(myfs::create_sub_directory(argv[1], "gbk"));

    std::vector<myfs::path> entries;
    myfs::file_path_list(directory, entries, false);
    for (const myfs::path& entry : entries) {
        if (!myfs::file_exists(entry) || entry.extension().string() != ".txt")
            continue;
        // Switches the locale of the process: no other thread runs here.
        const std::string gbk = CodeCvt::utf8_to_gbk(readAll(entry));
        myfs::path target(converted);
        target.append(entry.filename());
        if (!write(target, gbk))
            return 1;
        std::printf("%s: %zu bytes\n", target.string().c_str(), gbk.size());
    }
    return 0;
}
