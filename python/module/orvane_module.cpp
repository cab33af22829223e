// The native part of the Python package `orvane` (docs/python.md): parameter
// sets, runs of the engine, the parameter tools, the properties and the fit.
// Results are computed with the GIL released; large arrays are numpy views of
// the result object's own memory (the array keeps the object alive).
#include <algorithm>
#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>
#include <pybind11/stl/filesystem.h>

#include "core/physical_constants.hpp"
#include "core/user_error.hpp"
#include "engine/crystal_field_table.hpp"
#include "engine/parameter_file.hpp"
#include "engine/run_switches.hpp"
#include "fit/observed_levels_file.hpp"
#include "params/cf_conventions.hpp"
#include "params/cf_rotation.hpp"
#include "params/ligand_file.hpp"
#include "params/superposition.hpp"
#include "properties/g_factors.hpp"
#include "properties/intensities.hpp"
#include "properties/magnetic_moment.hpp"
#include "properties/susceptibility.hpp"
#include "python/module_tables.hpp"
#include "python/parameter_access.hpp"
#include "python/script_fit.hpp"
#include "python/script_run.hpp"
#include "tables/table_directory.hpp"

namespace py = pybind11;
using namespace orvane;

namespace {

// Chosen by the package at import; empty: the default. Set with the GIL held.
// Functions that release the GIL take their parameter set by value: a copy
// made while it is held, which other Python threads cannot change meanwhile.
std::filesystem::path gTableDirectory;

std::filesystem::path tables() { return gTableDirectory.empty() ? defaultTableDirectory() : gTableDirectory; }

// ---- numpy views and small arrays ----

// A view of memory owned by `owner` (column-major matrices: strides of Eigen).
template <typename Scalar>
py::array viewOf(const Scalar* data, std::vector<py::ssize_t> shape, py::handle owner) {
    std::vector<py::ssize_t> strides;
    py::ssize_t stride = sizeof(Scalar);
    for (const auto extent : shape) {
        strides.push_back(stride);
        stride *= extent;
    }
    return py::array(py::dtype::of<Scalar>(), std::move(shape), std::move(strides), data, owner);
}

template <typename Matrix>
py::object matrixView(const Matrix& m, py::handle owner) {
    if (m.size() == 0) return py::none();
    return viewOf(m.data(), {m.rows(), m.cols()}, owner);
}

// rows x width, filled row by row.
py::array_t<double> tripleRows(const std::vector<std::array<double, 3>>& rows) {
    py::array_t<double> out({static_cast<py::ssize_t>(rows.size()), py::ssize_t{3}});
    auto view = out.mutable_unchecked<2>();
    for (std::size_t i = 0; i < rows.size(); ++i)
        for (int a = 0; a < 3; ++a) view(static_cast<py::ssize_t>(i), a) = rows[i][a];
    return out;
}

// ---- parameter sets ----

double parameterOrRaise(const ParameterSet& set, const std::string& name, bool attribute) {
    if (const auto value = parameterValue(set, name)) return *value;
    if (attribute) throw py::attribute_error("ParameterSet has no attribute or parameter " + name);
    throw py::key_error(name);
}

std::string conventionName(CfConvention convention) {
    switch (convention) {
        case CfConvention::Stevens: return "Stevens";
        case CfConvention::UnitOperators: return "unit";
        case CfConvention::Wybourne: break;
    }
    return "Wybourne";
}

params::CfNormalisation normalisationNamed(const std::string& name) {
    if (name == "Wybourne") return params::CfNormalisation::Wybourne;
    if (name == "Stevens") return params::CfNormalisation::Stevens;
    if (name == "unit") return params::CfNormalisation::UnitTensor;
    throw py::value_error("convention " + name + ": use \"Wybourne\", \"Stevens\" or \"unit\"");
}

// The set with its crystal-field rows in another normalisation (through Wybourne).
ParameterSet converted(ParameterSet set, const std::string& to) {
    const auto target = normalisationNamed(to);
    auto table = crystalFieldTableOf(set);
    if (const auto c = params::conversionToWybourne(normalisationOf(set.cfConvention))) params::convertTable(table, *c);
    if (const auto c = params::conversionFromWybourne(target)) params::convertTable(table, *c);
    storeCrystalFieldTable(set, table);
    set.cfConvention = conventionOf(target);
    return set;
}

// Rotations act on Wybourne (or c_k-scaled) tensors; Stevens rows go through Wybourne.
ParameterSet rotated(ParameterSet set, double alpha, double beta, double gamma) {
    const bool stevens = set.cfConvention == CfConvention::Stevens;
    auto table = crystalFieldTableOf(set);
    if (stevens) params::convertTable(table, params::CfConversion::StevensToWybourne);
    table = params::rotateTable(table, {alpha, beta, gamma});
    if (stevens) params::convertTable(table, params::CfConversion::WybourneToStevens);
    storeCrystalFieldTable(set, table);
    return set;
}

std::vector<params::Ligand> ligandsOf(const py::object& ligands, std::optional<double>& r0) {
    if (py::isinstance<py::str>(ligands) || py::hasattr(ligands, "__fspath__")) {
        const auto file = params::readLigandFile(ligands.cast<std::filesystem::path>());
        if (!r0) r0 = file.r0;
        return file.ligands;
    }
    std::vector<params::Ligand> out;
    for (const auto& row : ligands.cast<std::vector<std::array<double, 3>>>()) out.push_back({row[0], row[1], row[2]});
    return out;
}

ParameterSet superposition(const py::object& ligandsGiven, std::array<double, 3> bk, std::array<double, 3> tk,
                           std::optional<double> r0, bool stevensType, std::optional<ParameterSet> base) {
    const auto ligands = ligandsOf(ligandsGiven, r0);
    params::SuperpositionParameters p;
    p.r0 = r0.value_or(0.0);
    p.bk = bk;
    p.tk = tk;
    p.stevensType = stevensType;
    params::checkSuperpositionInput(ligands, p);
    ParameterSet set = base.value_or(ParameterSet{});
    set.cfConvention = CfConvention::Wybourne;
    storeCrystalFieldTable(set, params::superpositionTable(params::superpositionBkq(ligands, p)));
    return set;
}

// ---- properties ----

py::dict gFactors(ParameterSet set, bool complex, std::optional<double> spinG) {
    std::vector<std::array<double, 3>> g;
    std::vector<std::pair<int, int>> pairs;
    std::vector<double> energies;
    const auto directory = tables();
    {
        py::gil_scoped_release release;
        const auto states = scriptPropertyStates(set, complex, directory);
        const auto moment = magneticMomentOperator(states, spinG.value_or(kElectronSpinG));
        pairs = pairDoublets(states);
        for (const auto& [first, second] : pairs) {
            g.push_back(doubletGFactors(states, moment, first, second).g);
            energies.push_back(states.relativeEnergy(first));
        }
    }
    py::array_t<int> numbers({static_cast<py::ssize_t>(pairs.size()), py::ssize_t{2}});
    auto view = numbers.mutable_unchecked<2>();
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        view(static_cast<py::ssize_t>(i), 0) = pairs[i].first + 1;
        view(static_cast<py::ssize_t>(i), 1) = pairs[i].second + 1;
    }
    py::dict out;
    out["states"] = numbers;
    out["energies"] = py::array_t<double>(static_cast<py::ssize_t>(energies.size()), energies.data());
    out["g"] = tripleRows(g);
    return out;
}

py::array_t<double> susceptibility(ParameterSet set, const std::vector<double>& temperatures, bool complex,
                                   std::optional<double> spinG) {
    if (temperatures.empty()) throw py::value_error("no temperature given");
    std::vector<std::array<double, 3>> chi;
    const auto directory = tables();
    {
        py::gil_scoped_release release;
        const auto states = scriptPropertyStates(set, complex, directory);
        const auto moment = magneticMomentOperator(states, spinG.value_or(kElectronSpinG));
        const auto highest = *std::max_element(temperatures.begin(), temperatures.end());
        const auto table = susceptibilityTable(states, moment, highest);
        for (const double t : temperatures) chi.push_back(susceptibilityAt(table, t).chi);
    }
    return tripleRows(chi);
}

py::dict intensities(ParameterSet set, std::array<double, 3> omega, int initial, double index,
                     double radiusSquared, bool complex, std::optional<double> spinG) {
    std::vector<TransitionLine> lines;
    const auto directory = tables();
    {
        py::gil_scoped_release release;
        const auto states = scriptPropertyStates(set, complex, directory);
        const int count = static_cast<int>(states.states.size());
        if (initial < 1 || initial > count)
            throw UserError("Error in Main", "initial state " + std::to_string(initial) + ": the run has states 1 to " +
                                                 std::to_string(count));
        IntensityInput input;
        input.omega = omega;
        input.index.constant = index;
        input.radiusSquared = radiusSquared;
        const auto operators = intensityOperators(states, spinG.value_or(kElectronSpinG));
        lines = transitionLines(states, operators, initial - 1, 0, count - 1, input);
    }
    const auto column = [&](auto field) {
        py::array_t<double> out(static_cast<py::ssize_t>(lines.size()));
        auto view = out.mutable_unchecked<1>();
        for (std::size_t i = 0; i < lines.size(); ++i) view(static_cast<py::ssize_t>(i)) = field(lines[i]);
        return out;
    };
    py::dict out;
    out["initial"] = column([](const TransitionLine& l) { return l.initial + 1.0; }).attr("astype")("int64");
    out["final"] = column([](const TransitionLine& l) { return l.final + 1.0; }).attr("astype")("int64");
    out["wavenumber"] = column([](const TransitionLine& l) { return l.wavenumber; });
    out["wavelength"] = column([](const TransitionLine& l) { return l.wavelength; });
    out["u2"] = column([](const TransitionLine& l) { return l.unitSquares[0]; });
    out["u4"] = column([](const TransitionLine& l) { return l.unitSquares[1]; });
    out["u6"] = column([](const TransitionLine& l) { return l.unitSquares[2]; });
    out["md2"] = column([](const TransitionLine& l) { return l.magneticSquare; });
    out["strength_ed"] = column([](const TransitionLine& l) { return l.strengthED; });
    out["oscillator_ed"] = column([](const TransitionLine& l) { return l.oscillatorED; });
    out["oscillator_md"] = column([](const TransitionLine& l) { return l.oscillatorMD; });
    out["rate_ed"] = column([](const TransitionLine& l) { return l.rateED; });
    out["rate_md"] = column([](const TransitionLine& l) { return l.rateMD; });
    out["rate_eq"] = column([](const TransitionLine& l) { return l.rateEQ; });
    return out;
}

// ---- fit ----

// Observed levels: a file (docs/observed-levels-file.md) or rows (state, energy) / (state, label, energy).
void observedInto(const py::object& observed, ScriptFitRequest& request) {
    if (py::isinstance<py::str>(observed) || py::hasattr(observed, "__fspath__")) {
        auto file = readObservedLevelsFile(observed.cast<std::filesystem::path>());
        request.levels = std::move(file.levels);
        request.gFactors = std::move(file.gFactors);
        return;
    }
    for (const auto& item : observed) {
        const auto row = item.cast<py::tuple>();
        if (row.size() != 2 && row.size() != 3)
            throw py::value_error("an observed level is (state, energy) or (state, label, energy)");
        ObservedLevel level;
        level.stateNumber = row[0].cast<int>();
        if (row.size() == 3) level.stateLabel = row[1].cast<std::string>();
        level.observedEnergy = row[row.size() - 1].cast<double>();
        request.levels.push_back(level);
    }
}

}  // namespace

PYBIND11_MODULE(_orvane, m) {
    m.doc() = "Orvane: energy levels of open f-shell ions in crystals (docs/python.md)";
    static py::exception<UserError> error(m, "Error", PyExc_RuntimeError);
    py::register_exception_translator([](std::exception_ptr p) {
        try {
            if (p) std::rethrow_exception(p);
        } catch (const UserError& e) {
            const std::string message = e.describe();
            error((e.title().empty() ? message : std::string(e.title()) + ": " + message).c_str());
        }
    });

    m.def("table_directory", &tables, "The folder the tables are read from (and generated into).");
    m.def("set_table_directory", [](const std::filesystem::path& dir) { gTableDirectory = dir; }, py::arg("path"));
    m.def("_use_tables_near", [](const std::filesystem::path& dir) { gTableDirectory = tableDirectoryNear(dir); });

    py::class_<ParameterSet>(m, "ParameterSet", "The content of a parameter file (.par)")
        .def(py::init<>())
        .def(py::init<const ParameterSet&>(), py::arg("other"), "A copy")
        .def_static("read", [](const std::filesystem::path& path) { return readParameterFile(path); }, py::arg("path"))
        .def("write", [](const ParameterSet& s, const std::filesystem::path& path) { writeParameterFile(path, s); },
             py::arg("path"), "Writes the set atomically")
        .def("names", &parameterNames, "Names of the parameters the set gives")
        .def("__getitem__", [](const ParameterSet& s, const std::string& name) { return parameterOrRaise(s, name, false); })
        .def("__setitem__", [](ParameterSet& s, const std::string& name, double v) { setParameterValue(s, name, v); })
        .def("__contains__", [](const ParameterSet& s, const std::string& name) { return parameterValue(s, name).has_value(); })
        .def("__getattr__", [](const ParameterSet& s, const std::string& name) { return parameterOrRaise(s, name, true); })
        .def("__setattr__",
             [](py::object self, const std::string& name, py::object value) {
                 if (parameterValue(self.cast<const ParameterSet&>(), name))
                     setParameterValue(self.cast<ParameterSet&>(), name, value.cast<double>());
                 else
                     py::module_::import("builtins").attr("object").attr("__setattr__")(self, name, value);
             })
        .def("__copy__", [](const ParameterSet& s) { return ParameterSet(s); })
        .def("__deepcopy__", [](const ParameterSet& s, py::dict) { return ParameterSet(s); })
        .def("__eq__", [](const ParameterSet& a, const ParameterSet& b) { return a == b; })
        .def("to_dict",
             [](const ParameterSet& s) {
                 py::dict out;
                 for (const auto& name : parameterNames(s)) out[py::str(name)] = *parameterValue(s, name);
                 return out;
             })
        .def("__repr__", [](const ParameterSet& s) {
            return "<orvane.ParameterSet " + s.title + ", " + std::to_string(s.electronCount) + " electrons, fold " +
                   std::to_string(s.fold) + ">";
        })
        .def_readwrite("title", &ParameterSet::title)
        .def_readwrite("note", &ParameterSet::note)
        .def_readwrite("description", &ParameterSet::description)
        .def_readwrite("electrons", &ParameterSet::electronCount)
        .def_readwrite("fold", &ParameterSet::fold)
        .def_property_readonly("convention", [](const ParameterSet& s) { return conventionName(s.cfConvention); })
        .def_property_readonly("unit", [](const ParameterSet& s) { return std::string(energyUnitName(s.switches.energyUnit)); });

    py::class_<ScriptLevels>(m, "Levels", "The crystal-field levels of a run")
        .def_property_readonly("energies", [](py::object self) {
            const auto& r = self.cast<const ScriptLevels&>();
            return viewOf(r.energies.data(), {r.energies.size()}, self);
        })
        .def_property_readonly("twice_mu", [](py::object self) {
            const auto& r = self.cast<const ScriptLevels&>();
            return viewOf(r.twiceMu.data(), {r.twiceMu.size()}, self);
        })
        .def_property_readonly("vectors", [](py::object self) {
            const auto& r = self.cast<const ScriptLevels&>();
            return r.complexVectors.size() ? matrixView(r.complexVectors, self) : matrixView(r.vectors, self);
        })
        .def_property_readonly("derivatives", [](py::object self) {
            return matrixView(self.cast<const ScriptLevels&>().derivatives, self);
        })
        .def_readonly("labels", &ScriptLevels::labels)
        .def_readonly("basis", &ScriptLevels::basis)
        .def_readonly("parameter_names", &ScriptLevels::parameterNames)
        .def_readonly("unit", &ScriptLevels::unit)
        .def("__len__", [](const ScriptLevels& r) { return r.energies.size(); });

    m.def(
        "run",
        [](ParameterSet set, bool complex, bool vectors, bool derivatives) {
            ScriptLevels levels;
            const auto directory = tables();
            {
                py::gil_scoped_release release;
                levels = computeScriptLevels(set, {complex, vectors, derivatives}, directory);
            }
            return levels;
        },
        py::arg("params"), py::arg("complex") = false, py::arg("vectors") = true, py::arg("derivatives") = true,
        "Crystal-field levels of a parameter set");

    m.def("convert", &converted, py::arg("params"), py::arg("to"),
          "The set with its crystal-field rows in another convention: \"Wybourne\", \"Stevens\" or \"unit\"");
    m.def("rotate", &rotated, py::arg("params"), py::arg("alpha"), py::arg("beta"), py::arg("gamma"),
          "The set with its crystal field rotated by Euler angles (degrees)");
    m.def("superposition", &superposition, py::arg("ligands"), py::arg("bk"), py::arg("tk"), py::arg("r0") = py::none(),
          py::arg("stevens_type") = false, py::arg("base") = py::none(),
          "Wybourne B(k,q) of the superposition model from a ligand file or (R, theta, phi) rows");
    m.def("gfactors", &gFactors, py::arg("params"), py::arg("complex") = false, py::arg("gs") = py::none());
    m.def("susceptibility", &susceptibility, py::arg("params"), py::arg("temperatures"), py::arg("complex") = false,
          py::arg("gs") = py::none(), "chi_x, chi_y, chi_z (emu/mol) at each temperature (K)");
    m.def("intensities", &intensities, py::arg("params"), py::arg("omega"), py::arg("initial") = 1,
          py::arg("index") = 1.0, py::arg("radius_squared") = 1.0, py::arg("complex") = false,
          py::arg("gs") = py::none());

    py::class_<ScriptFit>(m, "FitResult", "A finished fit")
        .def_readonly("parameters", &ScriptFit::fitted)
        .def_readonly("report", &ScriptFit::report)
        .def_readonly("rms", &ScriptFit::rmsDeviation)
        .def_readonly("standard_error", &ScriptFit::standardError);
    m.def(
        "fit",
        [](ParameterSet set, const py::object& observed, std::vector<std::string> free, std::optional<int> cycles,
           bool complex) {
            ScriptFitRequest request;
            observedInto(observed, request);
            request.free = std::move(free);
            request.cycles = cycles;
            request.complex = complex;
            const auto directory = tables();
            py::gil_scoped_release release;
            return fitParameterSet(set, request, directory);
        },
        py::arg("params"), py::arg("observed"), py::arg("free"), py::arg("cycles") = py::none(),
        py::arg("complex") = false, "Least-squares fit of the free parameters to observed levels");
}
