#include "app/Recorder.h"

#include "platform/Console.h"
#include "platform/FileStore.h"

#include <filesystem>
#include <vector>

void CRecorder::Begin(CReplay::Header header)
{
    if (!enabled)
        return;
    replay = CReplay();
    replay.header = std::move(header);
    recording = true;
}

void CRecorder::Input(std::uint32_t message, std::uint32_t wParam)
{
    if (recording)
        replay.AddInput(message, wParam);
}

void CRecorder::DropLastInput()
{
    if (recording && replay.inputs.size() > replay.FirstInputBefore(replay.frames.size()))
        replay.inputs.pop_back();
}

void CRecorder::Frame(double elapsedMs, std::uint32_t stateHash, bool idle)
{
    if (recording)
        replay.AddFrame(elapsedMs, stateHash, idle);
}

void CRecorder::End(CReplay::Summary summary)
{
    if (!recording)
        return;
    recording = false;
    replay.summary = summary;
    WaitForSaves();
    // Where the files go is settled now, whatever folder the program stands in later.
    std::vector<std::string> files;
    for (const std::string& file : {lastGameFile, recordFile}) {
        std::error_code error;
        if (!file.empty())
            files.push_back(std::filesystem::absolute(file, error).string());
    }
    finished = std::move(replay);
    replay = CReplay();
    // Only the next End changes the finished game, and it waits for this first.
    saving = std::thread([this, files = std::move(files)] {
        const std::string bytes = finished.Encode();
        for (const std::string& file : files)
            Save(file, bytes);
    });
}

void CRecorder::WaitForSaves()
{
    if (saving.joinable())
        saving.join();
}

void CRecorder::Save(const std::string& path, const std::string& bytes)
{
    if (const Result saved = Platform::SaveFile(path, bytes); saved != S_OK)
        Platform::PrintError("replay not saved in " + path + ": " + Platform::FileProblemText(saved));
}
