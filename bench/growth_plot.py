"""Draws the growth series."""
import math

WIDTH, HEIGHT, MARGIN = 560, 360, 56


def growth_svg(seconds):
    """An SVG with both axes logarithmic; `seconds` by number of files."""
    low_x, high_x = (math.log10(edge) for edge in (min(seconds), max(seconds)))
    low_y = math.floor(math.log10(min(seconds.values())))
    high_y = math.ceil(math.log10(max(seconds.values())))

    def place(files, value):
        x = MARGIN + (math.log10(files) - low_x) / (high_x - low_x) * (WIDTH - 2 * MARGIN)
        y = HEIGHT - MARGIN - (math.log10(value) - low_y) / (high_y - low_y) * (HEIGHT - 2 * MARGIN)
        return x, y

    points = [(files, value, *place(files, value)) for files, value in seconds.items()]
    parts = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{WIDTH}" height="{HEIGHT}" '
             'font-family="sans-serif" font-size="12">',
             f'<rect width="{WIDTH}" height="{HEIGHT}" fill="white"/>',
             f'<text x="{MARGIN}" y="24" font-size="14">Pass over a package: CPU time by number of files</text>']
    for power in range(low_y, high_y + 1):
        _, y = place(min(seconds), 10 ** power)
        parts.append(f'<path d="M{MARGIN} {y:.1f}H{WIDTH - MARGIN}" stroke="#ddd"/>')
        parts.append(f'<text x="{MARGIN - 6}" y="{y + 4:.1f}" text-anchor="end">{10 ** power * 1000:g} ms</text>')
    # Linear growth, for comparison.
    first, last = min(seconds), max(seconds)
    (x1, y1), (x2, y2) = place(first, seconds[last] * first / last), place(last, seconds[last])
    parts.append(f'<path d="M{x1:.1f} {y1:.1f}L{x2:.1f} {y2:.1f}" stroke="#999" stroke-dasharray="4"/>')
    line = "L".join(f"{x:.1f} {y:.1f}" for _, _, x, y in points)
    parts.append(f'<path d="M{line}" fill="none" stroke="#06c" stroke-width="2"/>')
    for files, value, x, y in points:
        parts.append(f'<circle cx="{x:.1f}" cy="{y:.1f}" r="4" fill="#06c"/>')
        parts.append(f'<text x="{x:.1f}" y="{y - 10:.1f}" text-anchor="middle">{value * 1000:.1f} ms</text>')
        parts.append(f'<text x="{x:.1f}" y="{HEIGHT - MARGIN + 18}" text-anchor="middle">{files:,}</text>')
    return "\n".join(parts + ["</svg>"]) + "\n"
