"""Parts of drawings for light and dark pages."""

import html

INKS = (("#1f2328", "#59636e", "#d1d9e0"), ("#e6edf3", "#9198a1", "#3d444d"))  # of text, of faint text, of lines of a grid


def style(colours, faint=()):
    """The style sheet. `colours`: {class: (colour on light pages, on dark ones)}; `faint`: classes of further lines."""
    def rules(which):
        text, grey, grid = INKS[which]
        lines = "".join(f".{name}{{stroke:{grey}}}" for name in faint)
        marks = "".join(f".{name}{{fill:{of[which]};stroke:{of[which]}}}" for name, of in colours.items())
        return f"text{{fill:{text}}}.faint{{fill:{grey}}}.grid{{stroke:{grid}}}{lines}{marks}"
    return f"<style>{rules(0)}@media(prefers-color-scheme:dark){{{rules(1)}}}</style>"


def text(x, y, content, anchor="start", kind="", size=13):
    kind = f' class="{kind}"' if kind else ""
    return f'<text x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}" font-size="{size}"{kind}>{html.escape(content)}</text>'
