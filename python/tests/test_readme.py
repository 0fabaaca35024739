"""The README's Python example runs as written, on a photograph."""

import re
from pathlib import Path

import numpy as np
import pytest

README = Path(__file__).resolve().parents[2] / "README.md"


def test_readme_example(tmp_path, monkeypatch):
    Image = pytest.importorskip("PIL.Image")
    if not README.is_file():
        pytest.skip("no README beside this package")
    blocks = re.findall(r"```python\n(.*?)```", README.read_text(), re.S)
    example = next(b for b in blocks if "PIL" in b)
    assert len(example.strip().splitlines()) <= 12
    y, x = np.mgrid[0:180, 0:240]
    photo = (128 + 60 * np.sin(x / 9.0) * np.cos(y / 13.0) + 50 * ((x - 150) ** 2 + (y - 90) ** 2 < 900))
    Image.fromarray(photo.clip(0, 255).astype(np.uint8)).convert("RGB").save(tmp_path / "photo.jpg")
    monkeypatch.chdir(tmp_path)
    exec(compile(example, str(README), "exec"), {})
    edges = np.asarray(Image.open(tmp_path / "edges.png"))
    assert edges.shape == (180, 240) and set(np.unique(edges)) <= {0, 255} and edges.any()
