# complete.zsh FOLDER: for each line on standard input, types it into an interactive shell that knows
# the completion in FOLDER and presses a key; prints what is offered on one line.
zmodload zsh/zpty
local offered=$(mktemp)

# next: waits until the shell has answered once more.
next() {
  integer tries
  for ((tries = 0; tries < 3000; tries++)); do
    [[ $(tail -n 1 $offered) != '[end]' ]] || return 0
    sleep 0.02
  done
  print -u2 'The shell does not answer.'
  exit 1
}

zpty -b shell "OFFERED=$offered FOLDER=$1 TERM=dumb zsh -f -i"
zpty -w shell '
  PROMPT=
  fpath=($FOLDER $fpath)
  autoload -Uz compinit
  compinit -u -D
  compadd() {
    local -a hits
    builtin compadd -O hits "$@"
    print -rl -- $hits >>$OFFERED
    builtin compadd "$@"
  }
  offer() { _main_complete; print "[end]" >>$OFFERED }
  zle -C offer complete-word offer
  bindkey -rp "^X"
  bindkey "^X" offer
  print "[end]" >>$OFFERED'
next
while IFS= read -r line; do
  : >$offered
  zpty -w -n shell "$line"$'\x18'
  next
  print -r -- ${(j: :)${(f)"$(grep -vFx '[end]' $offered)"}}
  zpty -w -n shell $'\x15'
done
zpty -d shell
rm -f $offered
