// The two plots, by Chart.js, which the page loads as a plain script.

const QUIET = '#9aa3ae';
const GRID = '#2a2f37';
const LINE = '#4cc2ff';

const { Chart } = window;

function axis(text, more = {}) {
  return { type: 'linear', title: { display: true, text, color: QUIET, padding: 0, font: { size: 10 } },
    ticks: { color: QUIET, callback: (value) => String(Number(value.toPrecision(3))), font: { size: 10 }, maxTicksLimit: 6, maxRotation: 0 }, grid: { color: GRID }, ...more };
}

/** An empty plot of one curve. @param clicked (x) -> what a click on it does. */
export function plotOn(canvas, x, y, clicked) {
  return new Chart(canvas, {
    type: 'line',
    data: { datasets: [{ data: [], borderColor: LINE, borderWidth: 1.2, pointRadius: 0 },
      { data: [], borderColor: '#ffb84d', backgroundColor: '#ffb84d', showLine: false, pointRadius: 4, pointHoverRadius: 6 }] },
    options: {
      animation: false, responsive: true, maintainAspectRatio: false, parsing: false, normalized: true,
      interaction: { mode: 'nearest', axis: 'x', intersect: false },
      plugins: { legend: { display: false }, decimation: { enabled: true, algorithm: 'min-max' },
        tooltip: { displayColors: false, callbacks: { title: () => '',
          label: ({ parsed }) => `${parsed.x.toPrecision(5)} ${x} · ${parsed.y.toPrecision(4)} ${y}` } } },
      scales: { x: axis(x), y: axis(y) },
      onClick: (event, _, chart) => clicked(chart.scales.x.getValueForPixel(event.x)),
    },
  });
}

export function fillPlot(chart, curve, points, unit) {
  chart.resize(); // it may have been hidden until now
  chart.data.datasets[0].data = curve;
  chart.data.datasets[1].data = points;
  chart.options.scales.x.min = curve.length ? curve[0].x : undefined;
  chart.options.scales.x.max = curve.length ? curve[curve.length - 1].x : undefined;
  chart.options.scales.y.title.text = unit;
  chart.update();
}
