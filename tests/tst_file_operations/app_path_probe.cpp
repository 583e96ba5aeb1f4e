// SPDX-License-Identifier: MIT
#include "myfs.h"

#include <cstdio>
#include <cstring>

//   app_path_probe print             its path, asked for twice
//   app_path_probe move FROM TO      its path, before and after it moved itself
//   app_path_probe chdir             the working directory after set_app_path()

namespace
{

void print(const myfs::path& p)
{
    std::printf("%s size %d\n", p.string().c_str(), static_cast<int>(p.size()));
}

} // namespace

int main(int argc, char** argv)
{
    if (argc == 2 && std::strcmp(argv[1], "chdir") == 0) {
        myfs::set_app_path();
        print(myfs::current_path());
        return 0;
    }
    print(myfs::app_path());
    if (argc == 4 && std::rename(argv[2], argv[3]) != 0)
        return 1;
    print(myfs::app_path());
    return 0;
}
