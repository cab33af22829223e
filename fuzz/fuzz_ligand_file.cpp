// libFuzzer target: any byte string given to the ligand-file reader must
// either parse to ligands at distances within the accepted range, whose
// superposition sums are finite or refused, or be refused with a UserError
// that names the file and a line.
//   fuzz_ligand_file work/ examples/ -max_len=2048 -timeout=5
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "core/user_error.hpp"
#include "params/ligand_file.hpp"
#include "params/superposition.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    orvane::params::LigandFile file;
    try {
        file = orvane::params::parseLigandText(text, "fuzz.lig");
    } catch (const orvane::UserError& error) {
        if (!error.where() || error.where()->file != "fuzz.lig" || error.where()->line < 1) std::abort();
        return 0;
    }
    for (const auto& ligand : file.ligands)
        if (!orvane::params::ligandDistanceInRange(ligand.r)) std::abort();
    orvane::params::SuperpositionParameters p;
    p.r0 = file.r0.value_or(2.4);
    p.bk = {400.0, 300.0, 50.0};
    p.tk = {5.0, 6.0, 7.0};
    try {
        for (const auto& row : orvane::params::superpositionBkq(file.ligands, p))
            for (const auto& value : row)
                if (!std::isfinite(value.real()) || !std::isfinite(value.imag())) std::abort();
    } catch (const orvane::UserError&) {
    }
    return 0;
}
