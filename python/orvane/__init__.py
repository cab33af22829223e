"""Orvane: energy levels, states and properties of open f-shell ions in crystals.

See docs/python.md. Every function takes a ParameterSet (read from a .par file);
energies are in the set's energy unit, properties in cm^-1, K and emu/mol.
"""
import os as _os

from ._orvane import (Error, FitResult, Levels, ParameterSet, convert, fit, gfactors, intensities, rotate, run,
                      set_table_directory, superposition, susceptibility, table_directory, _use_tables_near)

_use_tables_near(_os.path.dirname(_os.path.abspath(__file__)))

__all__ = ["Error", "FitResult", "Levels", "ParameterSet", "convert", "fit", "gfactors", "intensities", "rotate",
           "run", "set_table_directory", "superposition", "susceptibility", "table_directory"]
