#include "app/Recorder.h"

#include "platform/Console.h"
#include "platform/FileStore.h"


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
    const std::string bytes = replay.Encode();
    if (!lastGameFile.empty())
        Save(lastGameFile, bytes);
    if (!recordFile.empty())
        Save(recordFile, bytes);
    finished = std::move(replay);
    replay = CReplay();
}

void CRecorder::Save(const std::string& path, const std::string& bytes) const
{
    if (const Result saved = Platform::SaveFile(path, bytes); saved != S_OK)
        Platform::PrintError("replay not saved in " + path + ": " + Platform::FileProblemText(saved));
}
