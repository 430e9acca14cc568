#pragma once
// A scratch working folder whose data files are links to the built game data,
// as a player's game folder holds them, without their settings file.
#include <filesystem>
#include <string>

struct CGameFolder {
    std::filesystem::path previous = std::filesystem::current_path();
    std::filesystem::path folder;

    explicit CGameFolder(const std::string& name) : folder(std::filesystem::temp_directory_path() / name)
    {
        namespace fs = std::filesystem;
        fs::remove_all(folder);
        fs::create_directories(folder);
        for (const auto& entry : fs::directory_iterator(QV_GAME_DIR))
            if (entry.path().filename() != "quelvarion.ini")
                fs::create_symlink(entry.path(), folder / entry.path().filename());
        fs::current_path(folder);
    }
    ~CGameFolder()
    {
        std::error_code ignored;
        std::filesystem::current_path(previous, ignored);
        std::filesystem::remove_all(folder, ignored);
    }
    CGameFolder(const CGameFolder&) = delete;
    CGameFolder& operator=(const CGameFolder&) = delete;
};
