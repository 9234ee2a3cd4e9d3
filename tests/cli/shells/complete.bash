# complete.bash FOLDER: for each line on standard input, prints what the completion in FOLDER offers
# after it, on one line.
source "$1/tintora-cli.bash"
read -r _ _ completion _ < <(complete -p tintora-cli)
while IFS= read -r line; do
  # Bash splits at the sign of equality too.
  read -r -a COMP_WORDS <<<"${line//=/ = }"
  [[ $line != *[\ =] ]] || COMP_WORDS+=("")
  COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
  "$completion"
  printf '%s\n' "${COMPREPLY[*]}"
done
