"use strict";
// Lets each viewer wipe between the original and what is chosen to be seen of it. Everything it
// shows stands in the page as pictures too, for paper and for browsers without scripts.
for (const viewer of document.querySelectorAll(".viewer")) {
  const section = viewer.closest("section");
  const wipe = viewer.querySelector(".wipe");
  const under = wipe.querySelector(".under");
  const over = wipe.querySelector(".over");
  const range = viewer.querySelector("input[type=range]");
  const label = viewer.querySelector(".seen-label");
  const radios = [...viewer.querySelectorAll("input[type=radio]")];

  const figureOf = (number) => section.querySelector(`.grid [data-seen="${number}"]`);

  const showPosition = () => {
    wipe.style.setProperty("--at", `${range.value}%`);
    range.setAttribute("aria-valuetext",
      `${range.value}% original, ${100 - range.value}% ${label.textContent}`);
  };
  const showSeen = () => {
    const seen = figureOf(radios.find((radio) => radio.checked).value);
    under.src = seen.src;
    under.alt = seen.alt;
    label.textContent = seen.dataset.label;
    showPosition();
  };
  const follow = (event) => {
    const box = wipe.getBoundingClientRect();
    const share = (event.clientX - box.left) / box.width;
    range.value = String(Math.round(100 * Math.min(Math.max(share, 0), 1)));
    showPosition();
  };

  wipe.addEventListener("pointerdown", (event) => {
    if (event.button !== 0) return;
    wipe.setPointerCapture(event.pointerId);
    follow(event);
  });
  wipe.addEventListener("pointermove", (event) => {
    if (wipe.hasPointerCapture(event.pointerId)) follow(event);
  });
  range.addEventListener("input", showPosition);
  for (const radio of radios) radio.addEventListener("change", showSeen);

  over.src = figureOf("original").src;
  viewer.hidden = false;
  showSeen();
}
