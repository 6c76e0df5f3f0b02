#pragma once

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <stdlib.h>
#include <string>

/// A fresh folder that goes with all its contents at the end of the test.
class TempFolder {
public:
    TempFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "orvtest.XXXXXX").string();
        root = mkdtemp(pattern.data()) ? pattern : "";
        EXPECT_FALSE(root.empty());
    }
    ~TempFolder() {
        std::error_code ignored;
        if (!root.empty()) std::filesystem::remove_all(root, ignored);
    }
    TempFolder(const TempFolder&) = delete;

    const std::string& path() const { return root; }
    std::string path(const std::string& name) const { return root + "/" + name; }
    /// Makes a file and the folders above it.
    std::string file(const std::string& name, const std::string& contents = "x") const {
        std::filesystem::create_directories(std::filesystem::path(path(name)).parent_path());
        std::ofstream(path(name), std::ios::binary) << contents;
        return path(name);
    }
    std::string folder(const std::string& name) const {
        std::filesystem::create_directories(path(name));
        return path(name);
    }
    void link(const std::string& target, const std::string& name) const {
        std::filesystem::create_symlink(target, path(name));
    }
    /// The contents of a file, or "(none)".
    std::string read(const std::string& name) const {
        std::ifstream in(path(name), std::ios::binary);
        if (!in) return "(none)";
        std::stringstream text;
        text << in.rdbuf();
        return text.str();
    }
    /// How many entries the folder itself has.
    long entries() const {
        return std::distance(std::filesystem::directory_iterator(root), std::filesystem::directory_iterator());
    }

private:
    std::string root;
};
