// SPDX-License-Identifier: LicenseRef-Halyard
// A started application whose settings lie in temporary folders: the user's under "home", the program's under "app".
#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <utility>

#include "Core/CAppDataListener.h"
#include "Core/CWriteSeqBuffer.h"
#include "EventFixture.h"
#include "Tests/Platform/TemporaryFolder.h"

namespace brt {

class AppDataFixture : public EventFixture {
protected:
    static constexpr char kLocal[] = "Brontel/Audio Plug-Ins/Halyard/";
    static constexpr char kUserFolder[] = "home/Brontel/Audio Plug-Ins/Halyard/";
    static constexpr char kPortableFolder[] = "app/Brontel Settings/Audio Plug-Ins/Halyard/";

    void SetUp() override {
        useHome(m_folder.bytes("home"));
        addResource("AppDataLocal_uicolor-name", block("dstr", stored("Gray")));
        EventFixture::SetUp();
    }
    void TearDown() override {
        EventFixture::TearDown();
        unsetenv("XDG_CONFIG_HOME");
    }

    static void useHome(const std::string& path) { ASSERT_EQ(setenv("XDG_CONFIG_HOME", path.c_str(), 1), 0); }

    // For a store that has nothing cached, as in a process that starts now.
    CString moduleFolder() const { return CString::fromPath(m_folder.path("app/")); }

    static std::string stored(const std::string& text) {
        return std::string{static_cast<char>(text.size()), 0, 0, 0} + text;
    }
    // A compressed block.
    static Bytes block(const char* tag, const std::string& payload) {
        std::uint32_t number = 0;
        for (int i = 3; i >= 0; --i) number = number << 8 | static_cast<unsigned char>(tag[i]);
        CByteBuffer buffer;
        buffer.assign(payload.data(), static_cast<int>(payload.size()));
        CWriteSeqBuffer chain(1024);
        EXPECT_EQ(messageOf(chain.writeCompressedData(buffer, number)), "");
        chain.moveTo(buffer);
        return {buffer.data(), buffer.data() + buffer.size()};
    }

    void putFile(const std::string& name, const Bytes& bytes) {
        const std::filesystem::path path = m_folder.bytes(name);
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()), std::ssize(bytes));
    }
    void putText(const std::string& name, const std::string& value) { putFile(name, block("dstr", stored(value))); }
    bool exists(const std::string& name) const { return std::filesystem::exists(m_folder.bytes(name)); }
    unsigned modeOf(const std::string& name) const {
        struct stat status {};
        EXPECT_EQ(stat(m_folder.bytes(name).c_str(), &status), 0);
        return status.st_mode & 0777;
    }

    static std::string read(CAppData& store, CStringView key, CStringView defaultValue = "default") {
        CString value;
        store.getString(value, key, defaultValue);
        return text(value);
    }
    static std::string bytes(CAppData& store, CStringView key, std::uint32_t tag, EAppDataRead read = kCachedRead) {
        CByteBuffer buffer;
        store.getData(key, buffer, tag, read);
        return {buffer.data(), buffer.data() + buffer.size()};
    }
    int timesLogged(const std::string& part) {
        int times = 0;
        for (const std::string& line : log()) times += line.find(part) != std::string::npos;
        return times;
    }

    // A complete child with these attributes, or the message of what failed.
    using Attributes = std::vector<std::pair<const char*, const char*>>;
    static std::string make(CObject& parent, CStringView name, CStringView tag, const Attributes& attributes) {
        CAttrMap map;
        for (const auto& [key, value] : attributes) map.findOrInsert(key).setText(value);
        CObject* child = nullptr;
        return messageOf(parent.createChild(child, tag, name, kTemplateOptional, nullptr, &map));
    }

    TemporaryFolder m_folder;
};

}  // namespace brt
