"""Installs the Python package orlo_hk (python/orlo_hk): `pip install .`
from this folder, with Debian's setuptools and no network. The package is
pure Python; it loads liborloHKGeocoder.so at run time (see its
docstring)."""
from setuptools import setup

setup(
    name="orlo_hk",
    version="0.1",
    description="Hong Kong address geocoding: the orloHKGeocoder library "
                "from Python, pandas and Dask",
    packages=["orlo_hk"],
    package_dir={"": "python"},
    python_requires=">=3.9",
)
