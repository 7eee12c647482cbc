! A Fortran caller of D02HAF (64-bit default integers): Bratu's problem y'' + lambda exp(y) = 0,
! y(0) = y(1) = 0, with lambda = 1 in RUSER(1), against y'(0) = 0.54935272877527081901868 (the closed form of
! data/make_bratu.py). FCN receives every argument by address, X within [0, 1], and IUSER, RUSER untouched.
! Stops non-zero on a mismatch.
program bratu_caller
  implicit none
  integer, parameter :: n = 2, lw = n * (10 * n + 14)
  integer :: iu(n), iv(n), iuser(2), ifail
  double precision :: u(n), v(n), ruser(1), w(lw)
  external :: bratu

  u = [0.0d0, 0.0d0]
  v = [0.0d0, 0.0d0]
  iu = [1, 0]
  iv = [1, 0]
  iuser = [0, 0]
  ruser(1) = 1.0d0
  ifail = 11
  call d02haf(u, iu, v, iv, n, 0.0d0, 1.0d0, 0.5d0, 1.0d-8, bratu, 20, 100000, iuser, ruser, w, lw, ifail)
  if (ifail /= 0 .or. abs(u(2) - 0.54935272877527081901868d0) > 1.0d-7 .or. abs(v(2) + u(2)) > 1.0d-7 &
      .or. iuser(1) /= nint(w(3)) .or. iuser(2) /= 0 .or. abs(ruser(1) - 1.0d0) > 0.0d0) then
    print '(a, i0, 2es24.16, i8)', 'FAILED: ifail ', ifail, u(2), v(2), iuser(1)
    error stop 1
  end if
  print '(a)', '1 passed, 0 failed'
end program bratu_caller

! y1' = y2, y2' = -lambda exp(y1); counts its calls in IUSER(1), those with X outside [0, 1] in IUSER(2).
subroutine bratu(x, y, f, iuser, ruser)
  implicit none
  double precision, intent(in) :: x, y(*)
  double precision, intent(out) :: f(*)
  integer, intent(inout) :: iuser(*)
  double precision, intent(inout) :: ruser(*)
  iuser(1) = iuser(1) + 1
  if (x < 0.0d0 .or. x > 1.0d0) iuser(2) = iuser(2) + 1
  f(1) = y(2)
  f(2) = -ruser(1) * exp(y(1))
end subroutine bratu
