#include <fcntl.h>
#include <gelf.h>
#include <unistd.h>

#include <memory>

#include "host/support/host_error.h"
#include "host/support/system.h"
#include "host/target/symbols.h"

namespace etmhost {

namespace {

struct Descriptor {
    explicit Descriptor(int number) : number(number) {}
    ~Descriptor() { close(number); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    const int number;
};

bool HasAddress(const GElf_Sym& symbol) {
    const int type = GELF_ST_TYPE(symbol.st_info);
    return symbol.st_shndx != SHN_UNDEF && symbol.st_value <= UINT32_MAX &&
           (type == STT_FUNC || type == STT_OBJECT || type == STT_NOTYPE);
}

void ReadTable(Elf* elf, Elf_Scn* section, const GElf_Shdr& header, bool arm, Symbols& symbols) {
    Elf_Data* data = elf_getdata(section, nullptr);
    if (data == nullptr || header.sh_entsize == 0) return;
    for (const bool local : {false, true}) {
        GElf_Sym symbol;
        for (int index = 0; gelf_getsym(data, index, &symbol) != nullptr; ++index) {
            const char* name = elf_strptr(elf, header.sh_link, symbol.st_name);
            if (name == nullptr || *name == '\0' || *name == '$' || // "$a" marks code, not a place
                (GELF_ST_BIND(symbol.st_info) == STB_LOCAL) != local || !HasAddress(symbol))
                continue;
            uint32_t value = static_cast<uint32_t>(symbol.st_value);
            if (arm && GELF_ST_TYPE(symbol.st_info) == STT_FUNC)
                value &= ~1u; // bit 0 tells the instruction set
            symbols.emplace(name, value);
        }
    }
}

} // namespace

Symbols ReadSymbols(const std::filesystem::path& file) {
    const std::string shown = "symbol file \"" + PathText(file) + "\"";
    std::error_code ignored;
    const Descriptor descriptor(
        std::filesystem::is_regular_file(file, ignored) ? open(file.c_str(), O_RDONLY) : -1);
    if (descriptor.number < 0) throw HostError("cannot open " + shown);
    elf_version(EV_CURRENT);
    const std::unique_ptr<Elf, int (*)(Elf*)> elf(elf_begin(descriptor.number, ELF_C_READ, nullptr),
                                                  elf_end);
    GElf_Ehdr fileHeader;
    if (elf == nullptr || elf_kind(elf.get()) != ELF_K_ELF ||
        gelf_getehdr(elf.get(), &fileHeader) == nullptr)
        throw HostError(shown + " is no ELF file");
    Symbols symbols;
    Elf_Scn* section = nullptr;
    while ((section = elf_nextscn(elf.get(), section)) != nullptr) {
        GElf_Shdr header;
        if (gelf_getshdr(section, &header) != nullptr && header.sh_type == SHT_SYMTAB)
            ReadTable(elf.get(), section, header, fileHeader.e_machine == EM_ARM, symbols);
    }
    if (symbols.empty()) throw HostError(shown + " has no symbols");
    return symbols;
}

} // namespace etmhost
