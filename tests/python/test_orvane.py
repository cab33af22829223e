"""The Python module against the command line, finite differences and physics.

Run by CTest with PYTHONPATH at the built package and ORVANE_PROGRAM the built
`orvane`; examples are read from ORVANE_SOURCE_DIR/examples.
"""
import concurrent.futures
import csv
import io
import math
import os
import shutil
import subprocess
import tempfile
import unittest

import numpy as np

import orvane

SOURCE = os.environ.get("ORVANE_SOURCE_DIR", os.path.join(os.path.dirname(__file__), "..", ".."))
PROGRAM = os.environ.get("ORVANE_PROGRAM", "orvane")
PR = os.path.join(SOURCE, "examples", "Pr3plus-LaF3.par")
ND = os.path.join(SOURCE, "examples", "Nd3plus-LaF3.par")


def command_csv(*args):
    """Rows of a property command's --csv - output."""
    out = subprocess.run([PROGRAM, *args, "--csv", "-"], check=True, capture_output=True, text=True).stdout
    return list(csv.DictReader(io.StringIO(out)))


class RunTest(unittest.TestCase):
    def test_levels_equal_the_energy_file_of_orvane_run(self):
        with tempfile.TemporaryDirectory() as tmp:
            par = shutil.copy(PR, tmp)
            subprocess.run([PROGRAM, "run", par], check=True, capture_output=True)
            with open(par[:-4] + ".eng") as eng:
                rows = [line.split() for line in eng.readlines()[1:] if line.strip()]
        r = orvane.run(orvane.ParameterSet.read(PR))
        self.assertEqual(len(r), len(rows))
        np.testing.assert_allclose(r.energies, [float(row[1]) for row in rows], atol=2e-6)
        self.assertEqual(list(r.twice_mu), [int(row[3]) for row in rows])
        self.assertEqual(r.labels, [row[4] for row in rows])

    def test_vectors_are_orthonormal_views_over_the_basis(self):
        for complex_ in (False, True):
            r = orvane.run(orvane.ParameterSet.read(PR), complex=complex_)
            v = r.vectors
            self.assertEqual(v.shape, (len(r.basis), len(r)))
            self.assertFalse(v.flags.owndata)  # a view of the result's memory
            np.testing.assert_allclose(v.conj().T @ v, np.eye(len(r)), atol=1e-10)
        self.assertIsNone(orvane.run(orvane.ParameterSet.read(PR), vectors=False).vectors)

    def test_derivatives_equal_finite_differences(self):
        real = orvane.ParameterSet.read(PR)
        turned = orvane.rotate(real, 30, 40, 50)
        with self.assertRaises(orvane.Error):
            orvane.run(turned)  # the real engine would drop Im B(k,q)
        cases = ((real, False, (("F2", 1.0), ("ZETA", 0.1), ("B40", 1.0), ("B66", 1.0))),
                 (turned, True, (("ImB21", 1.0), ("B43", 1.0))))
        for p, complex_, steps in cases:
            r = orvane.run(p, complex=complex_)
            for name, step in steps:
                shifted = []
                for sign in (1, -1):
                    q = orvane.ParameterSet(p)
                    q[name] = p[name] + sign * step
                    shifted.append(orvane.run(q, complex=complex_, vectors=False, derivatives=False).energies)
                np.testing.assert_allclose(r.derivatives[:, r.parameter_names.index(name)],
                                           (shifted[0] - shifted[1]) / (2 * step), atol=1e-4, err_msg=name)

    def test_runs_in_threads_give_the_same_levels(self):
        p = orvane.ParameterSet.read(ND)
        expected = orvane.run(p, vectors=False).energies
        with concurrent.futures.ThreadPoolExecutor(4) as pool:
            for energies in pool.map(lambda _: orvane.run(p, vectors=False).energies, range(4)):
                np.testing.assert_array_equal(energies, expected)

class ParameterSetTest(unittest.TestCase):
    def test_access_by_attribute_and_name(self):
        p = orvane.ParameterSet.read(PR)
        self.assertEqual((p.F2, p["zeta"], p.B40, p["ImB22"], p.electrons, p.fold), (68878, 751.7, 738, 0, 2, 2))
        self.assertAlmostEqual(p.M2, 0.56 * 2.08)  # "0.56M0" reads as the engine applies it
        p.B20 = -300
        p["T2"] = 200.0  # a named parameter the file lacks is added
        self.assertEqual((p["B20"], p.T2), (-300, 200))
        for bad in (lambda: p.X9, lambda: p["B37"]):
            self.assertRaises((AttributeError, KeyError), bad)
        with self.assertRaisesRegex(orvane.Error, "X9"):
            p["X9"] = 1.0

    def test_write_reads_back_and_changes_the_levels(self):
        p = orvane.ParameterSet.read(PR)
        p.B40 = 812.25
        with tempfile.TemporaryDirectory() as tmp:
            path = os.path.join(tmp, "changed.par")
            p.write(path)
            q = orvane.ParameterSet.read(path)
        self.assertEqual(q.to_dict(), p.to_dict())
        before, after = orvane.run(orvane.ParameterSet.read(PR)).energies, orvane.run(q).energies
        self.assertGreater(np.abs(after - before).max(), 1.0)

    def test_errors_carry_the_library_message(self):
        with self.assertRaisesRegex(orvane.Error, "missing.par"):
            orvane.ParameterSet.read(os.path.join(SOURCE, "examples", "missing.par"))


class ParameterToolsTest(unittest.TestCase):
    def test_rotation_keeps_the_spectrum_and_is_undone_by_the_inverse(self):
        p = orvane.ParameterSet.read(PR)
        turned = orvane.rotate(p, 30, 40, 50)
        self.assertEqual(turned.fold, 1)  # q = 1 rows appear
        back = orvane.rotate(turned, -50, -40, -30)
        for name in ("B20", "B22", "B44", "B64", "B66", "ImB43"):
            self.assertAlmostEqual(back[name], p[name], delta=1e-3, msg=name)
        np.testing.assert_allclose(orvane.run(turned, complex=True).energies, orvane.run(p).energies, atol=1e-3)
        stevens = orvane.convert(p, "Stevens")  # another normalisation, the same levels
        self.assertNotAlmostEqual(stevens.B40, p.B40)
        np.testing.assert_allclose(orvane.run(stevens).energies, orvane.run(p).energies, atol=1e-3)

    def test_superposition_of_a_cube_has_the_cubic_ratios(self):
        lig = os.path.join(SOURCE, "examples", "cube-eight-ligands.lig")
        s = orvane.superposition(lig, bk=[400, 600, 300], tk=[7, 12, 12])
        self.assertAlmostEqual(s.B44 / s.B40, math.sqrt(5 / 14), places=6)
        self.assertAlmostEqual(s.B64 / s.B60, -math.sqrt(7 / 2), places=6)


class PropertiesTest(unittest.TestCase):
    def test_susceptibility_without_crystal_field_follows_curie(self):
        p = orvane.ParameterSet.read(PR)
        for name in p.names():
            if name.startswith("B"):
                p[name] = 0.0
        chi = orvane.susceptibility(p, [2.0, 5.0, 10.0])
        self.assertEqual(chi.shape, (3, 3))
        np.testing.assert_allclose(chi[:, 0], chi[:, 2], rtol=1e-9)  # isotropic
        g = 1 + (2.0023193 - 1) * (20 + 2 - 30) / 40  # Lande g of 3H4
        curie = 0.125049 * g * g * 20  # N_A mu_B^2 / (3 k) g^2 J(J+1), emu K/mol
        np.testing.assert_allclose(chi.mean(axis=1) * [2.0, 5.0, 10.0], curie, rtol=0.02)

    def test_gfactors_and_intensities_equal_the_commands(self):
        g = orvane.gfactors(orvane.ParameterSet.read(ND))
        rows = command_csv("gfactors", ND)
        self.assertEqual(g["states"].tolist(), [[int(r["first"]), int(r["second"])] for r in rows])
        np.testing.assert_allclose(g["g"], [[float(r[a]) for a in ("gx", "gy", "gz")] for r in rows], atol=1e-6)
        lines = orvane.intensities(orvane.ParameterSet.read(ND), omega=[1.0, 2.0, 3.0], initial=1, index=1.6)
        rows = command_csv("intensities", ND, "--initial", "1", "--omega", "1", "2", "3", "--index", "1.6")
        self.assertEqual(lines["final"].tolist(), [int(r["final"]) for r in rows])
        for ours, theirs in (("rate_ed", "A_ED"), ("rate_md", "A_MD"), ("u4", "U4")):
            np.testing.assert_allclose(lines[ours], [float(r[theirs]) for r in rows], rtol=1e-6, err_msg=ours)


class FitTest(unittest.TestCase):
    def test_fit_recovers_a_perturbed_parameter(self):
        p = orvane.ParameterSet.read(PR)
        target = orvane.run(p, vectors=False, derivatives=False).energies
        observed = [(n, target[n - 1]) for n in range(1, 40, 2)]
        start = orvane.ParameterSet(p)
        start.F2 = p.F2 + 400
        start.B40 = p.B40 - 60
        result = orvane.fit(start, observed, free=["F2", "B40"])
        self.assertAlmostEqual(result.parameters.F2, p.F2, delta=0.05)
        self.assertAlmostEqual(result.parameters.B40, p.B40, delta=0.05)
        self.assertLess(result.rms, 1e-2)
        self.assertIn("RMS Dev.", result.report)


if __name__ == "__main__":
    unittest.main()
