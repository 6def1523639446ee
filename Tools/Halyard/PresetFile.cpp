// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Halyard/PresetFile.h"

#include <fstream>
#include <vector>

#include "Audio/PresetStream.h"
#include "Core/CApplication.h"
#include "Core/CAtomicFileWriter.h"
#include "Core/CObject.h"
#include "Core/CResourceReader.h"
#include "Core/NumberText.h"
#include "Platform/PathText.h"
#include "Tools/Halyard/CToolInstance.h"
#include "Tools/Halyard/ToolError.h"
#include "Tools/NearName.h"

namespace brt {
namespace {

constexpr std::size_t kMostBytes = 64 << 20;
constexpr std::size_t kChunkPrefixBytes = 16;

// Of a host's file.
constexpr std::string_view kFxMagic = "CcnK";
constexpr std::string_view kFxpTag = "FPCh";
constexpr std::string_view kFxbTag = "FBCh";
constexpr std::size_t kFxHeadBytes = 28;
constexpr std::size_t kFxpNameBytes = 28;
constexpr std::size_t kFxbReservedBytes = 128;
constexpr std::size_t kFxTagPlace = 8;
constexpr std::size_t kFxIdPlace = 16;
constexpr unsigned kFxForm = 1;
constexpr unsigned kPluginVersion = 1;  // as hosts read it from the effect's record

[[noreturn]] void fail(const std::string& file, const std::string& what) {
    throw CToolError("cannot read presets from " + brt::quoted(file) + ": " + what);
}

void failOn(CError* error, const std::string& file) {
    if (error == nullptr) return;
    const std::string message = error->message().toUtf8();
    discardError(error);  // goes on as an exception
    fail(file, message);
}

std::uint32_t bigEndianAt(std::string_view bytes, std::size_t place) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4; ++i) value = value << 8 | static_cast<unsigned char>(bytes[place + i]);
    return value;
}

void appendBigEndian(std::string& bytes, std::size_t value) {
    for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(value >> shift & 0xFF);
}

std::string projectText(const char* attribute) {
    const CObject* const project = CApplication::sharedObject()->findObject("project");
    return project != nullptr ? CString(project->getAttrString(attribute)).toUtf8() : "";
}

std::string readAll(const std::string& name) {
    std::error_code ignored;
    if (std::filesystem::is_directory(name, ignored)) fail(name, "it is a folder");
    std::string bytes;
    if (std::ifstream stream(name, std::ios::binary); stream.is_open()) {
        char piece[65536];
        while (bytes.size() <= kMostBytes && (stream.read(piece, sizeof piece), stream.gcount() > 0))
            bytes.append(piece, static_cast<std::size_t>(stream.gcount()));
        if (stream.bad()) fail(name, "reading failed");
        if (bytes.size() > kMostBytes) fail(name, "it has more than 64 MiB; no preset is that large");
        return bytes;
    }
    const CString key = CString::fromUtf8(name);
    if (const CResource* const resource = CApplication::resources().find(key))
        return {static_cast<const char*>(resource->bytes), static_cast<std::size_t>(resource->size)};
    CNearName near(key);
    for (const auto& [known, resource] : CApplication::resources().resources()) near.consider(known);
    fail(name,
         "there is no such file, or it may not be read; nor has the program a resource of that name" + near.question());
}

// A compressed block, by its tag.
void readBlock(PresetFile& file, std::string_view block, EPresetForm presetForm, EPresetForm bankForm) {
    CMemoryReader stream(block.data(), static_cast<int>(block.size()));
    const std::string_view tag = block.substr(0, 4);
    file.banks.clear();
    if (tag == "aprs") {
        file.form = presetForm;
        CAudioPresetBank& bank = *file.banks.append(new CAudioPresetBank);
        failOn(bank.presets().append(new CAudioPreset)->loadPacked(stream), file.name);
    } else if (tag == "abnk") {
        file.form = bankForm;
        failOn(file.banks.append(new CAudioPresetBank)->loadPacked(stream), file.name);
    } else if (tag == "alst" && bankForm == EPresetForm::kBank) {
        file.form = EPresetForm::kList;
        CByteBuffer plain;
        failOn(stream.readCompressedData(plain, appDataTag::kPresetList), file.name);
        CMemoryReader list(plain.data(), plain.size());
        failOn(CAudioPresetBank::loadList(list, file.banks), file.name);
        failOn(expectEnd(list), file.name);
    } else {
        fail(file.name, "it is no preset, bank, state of a host, fxp or fxb file");
    }
}

// What a host keeps.
std::string_view withoutPrefix(const std::string& name, std::string_view chunk) {
    const std::string_view prefix = chunk.substr(0, kChunkPrefixBytes);
    if (chunk.size() <= kChunkPrefixBytes || prefix.find_first_not_of('\0') != std::string_view::npos)
        fail(name, "the state in it is not one of this plug-in");
    return chunk.substr(kChunkPrefixBytes);
}

void readHostFile(PresetFile& file, std::string_view bytes) {
    const std::string_view tag = bytes.substr(0, kFxHeadBytes).substr(kFxTagPlace, 4);
    const bool isPreset = tag == kFxpTag;
    if (!isPreset && tag != kFxbTag)
        fail(file.name, "it holds values of single parameters (" + printable(std::string(tag)) +
                            "); save it with the plug-in's state");
    const std::size_t chunkPlace = kFxHeadBytes + (isPreset ? kFxpNameBytes : kFxbReservedBytes) + 4;
    if (bytes.size() < chunkPlace) fail(file.name, "it ends within its header");
    const std::string id(bytes.substr(kFxIdPlace, 4));
    if (id != projectText("plugin-code"))
        fail(file.name, "it belongs to another plug-in, of id '" + printable(id) + "'");
    const std::size_t chunkBytes = bigEndianAt(bytes, chunkPlace - 4);
    if (chunkBytes > bytes.size() - chunkPlace)
        fail(file.name, "it is cut: of " + std::to_string(chunkBytes) + " bytes of state " +
                            std::to_string(bytes.size() - chunkPlace) + " are there");
    readBlock(file, withoutPrefix(file.name, bytes.substr(chunkPlace, chunkBytes)), EPresetForm::kFxp,
              EPresetForm::kFxb);
}

std::string packed(EPresetForm form, const CAudioPresetBank& bank) {
    CWriteSeqBuffer chain(CWriteSeqBuffer::kStateBlockBytes);
    CError* const error = isPresetForm(form) ? bank[0].savePacked(chain) : bank.savePacked(chain);
    if (error != nullptr) {
        const std::string message = error->message().toUtf8();
        discardError(error);  // goes on as an exception
        throw CToolError("these presets can't be stored: " + message);
    }
    CByteBuffer bytes;
    chain.moveTo(bytes);
    return {reinterpret_cast<const char*>(bytes.data()), static_cast<std::size_t>(bytes.size())};
}

// Cut at a letter's end, so that a 0 stands behind it.
std::string nameField(const CAudioPreset& preset) {
    CString id, name;
    CAudioPreset::splitName(preset.name(), id, name);
    std::string field = name.toUtf8();
    if (field.size() >= kFxpNameBytes) {
        std::size_t end = kFxpNameBytes - 1;
        while (end > 0 && (static_cast<unsigned char>(field[end]) & 0xC0) == 0x80) --end;
        field.resize(end);
    }
    field.resize(kFxpNameBytes);
    return field;
}

std::string hostFileBytes(EPresetForm form, const CAudioPresetBank& bank, const std::string& chunk) {
    const bool isPreset = form == EPresetForm::kFxp;
    const int count = isPreset ? CToolInstance().hostParams().params().count() : bank.count();
    std::string body(isPreset ? kFxpTag : kFxbTag);
    appendBigEndian(body, kFxForm);
    body += projectText("plugin-code");
    appendBigEndian(body, kPluginVersion);
    appendBigEndian(body, static_cast<std::size_t>(count));
    body += isPreset ? nameField(bank[0]) : std::string(kFxbReservedBytes, '\0');
    appendBigEndian(body, chunk.size());
    body += chunk;
    std::string bytes(kFxMagic);
    appendBigEndian(bytes, body.size());
    return bytes + body;
}

}  // namespace

const char* formText(EPresetForm form) {
    switch (form) {
    case EPresetForm::kPreset: return "a preset";
    case EPresetForm::kBank: return "a bank";
    case EPresetForm::kPresetChunk: return "a host's state with a preset";
    case EPresetForm::kBankChunk: return "a host's state with a bank";
    case EPresetForm::kFxp: return "an fxp file";
    case EPresetForm::kFxb: return "an fxb file";
    case EPresetForm::kList: return "a list of banks";
    }
    return "";
}

const char* formName(EPresetForm form) {
    switch (form) {
    case EPresetForm::kPreset: return "cpf";
    case EPresetForm::kBank: return "cbf";
    case EPresetForm::kPresetChunk: return "preset-chunk";
    case EPresetForm::kBankChunk: return "bank-chunk";
    case EPresetForm::kFxp: return "fxp";
    case EPresetForm::kFxb: return "fxb";
    case EPresetForm::kList: return "list";
    }
    return "";
}

bool isPresetForm(EPresetForm form) {
    return form == EPresetForm::kPreset || form == EPresetForm::kPresetChunk || form == EPresetForm::kFxp;
}

int PresetFile::presetCount() const {
    int count = 0;
    for (const CAudioPresetBank* const bank : banks) count += bank->count();
    return count;
}

const CAudioPreset& PresetFile::preset(int index) const {
    int bank = 0;
    while (index >= banks[bank].count()) index -= banks[bank++].count();
    return banks[bank][index];
}

void readPresetFile(PresetFile& file, const std::string& name) {
    const std::string bytes = readAll(name);
    file.name = name;
    if (bytes.starts_with(kFxMagic))
        readHostFile(file, bytes);
    else if (bytes.size() >= kChunkPrefixBytes && bytes.find_first_not_of('\0') >= kChunkPrefixBytes)
        readBlock(file, withoutPrefix(name, bytes), EPresetForm::kPresetChunk, EPresetForm::kBankChunk);
    else
        readBlock(file, bytes, EPresetForm::kPreset, EPresetForm::kBank);
}

int findPreset(const PresetFile& file, const std::string& wanted) {
    const CString name = CString::fromUtf8(wanted);
    CNearName near(name);
    std::vector<int> found;
    for (int i = 0; i < file.presetCount(); ++i) {
        CString id, own;
        CAudioPreset::splitName(file.preset(i).name(), id, own);
        if (own == name || file.preset(i).name() == name) found.push_back(i);
        near.consider(own);
    }
    if (found.size() == 1) return found[0];
    if (found.size() > 1)
        throw CToolError(brt::quoted(file.name) + " has several presets " + brt::quoted(wanted) +
                         "; name one by its index");
    std::int64_t index = 0;
    if (parseInteger(name, index) && index >= 0 && index < file.presetCount()) return static_cast<int>(index);
    throw CToolError(brt::quoted(file.name) + " has no preset " + brt::quoted(wanted) + near.question());
}

std::string presetFileBytes(EPresetForm form, const CAudioPresetBank& bank) {
    if (form == EPresetForm::kList)
        throw CToolError("a list of banks has no file of its own; write a bank or a preset");
    std::string block = packed(form, bank);
    if (form == EPresetForm::kPreset || form == EPresetForm::kBank) return block;
    std::string chunk = std::string(kChunkPrefixBytes, '\0') + block;
    if (form == EPresetForm::kPresetChunk || form == EPresetForm::kBankChunk) return chunk;
    return hostFileBytes(form, bank, chunk);
}

void writePresetFile(const std::filesystem::path& path, EPresetForm form, const CAudioPresetBank& bank) {
    const std::string bytes = presetFileBytes(form, bank);
    CAtomicFileWriter writer;
    CError* error = writer.open(CString::fromPath(pathFromSystem(path.string())));
    if (error == nullptr) error = writer.write(bytes.data(), static_cast<int>(bytes.size()));
    if (error == nullptr) error = writer.commit();
    if (error == nullptr) return;
    const std::string message = error->message().toUtf8();
    discardError(error);  // goes on as an exception
    throw CToolError("cannot write " + brt::quoted(path) + ": " + message);
}

}  // namespace brt
